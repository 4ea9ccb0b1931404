"""How the platform's types travel in calls: one encoding per processor, as `@encode` writes it.

Only what the binary interface tells apart counts: every pointer is `^`, every object `@`.
"""
import re

PROCESSORS = ("arm64", "x86_64")

POINT, SIZE = "{CGPoint=dd}", "{CGSize=dd}"
RECT = f"{{CGRect={POINT}{SIZE}}}"

# Of one byte BOOL is the only type that differs: x86-64 keeps the signed char of old.
BOOL = {"arm64": "B", "x86_64": "c"}

CODES = {
    "void": "v", "id": "@", "instancetype": "@", "Class": "#", "SEL": ":", "pointer": "^", "block": "@?", "IMP": "^",
    "bool": "B", "Boolean": "C", "char": "c", "unsigned char": "C", "short": "s", "unsigned short": "S",
    "unichar": "S", "int": "i", "unsigned int": "I", "long long": "q", "unsigned long long": "Q", "NSInteger": "q",
    "NSUInteger": "Q", "CFIndex": "q", "CFTypeID": "Q", "size_t": "Q", "ptrdiff_t": "q", "uint8_t": "C",
    "int64_t": "q", "uint64_t": "Q", "uintptr_t": "Q", "intptr_t": "q", "int32_t": "i", "uint32_t": "I",
    "float": "f", "double": "d", "CGFloat": "d", "NSTimeInterval": "d", "CFTimeInterval": "d",
    "NSLayoutPriority": "f", "NSStackViewVisibilityPriority": "f",
    "NSFontWeight": "d", "NSFontWidth": "d", "NSGlyph": "I", "NSWindowDepth": "i", "OSType": "I", "UniChar": "S",
    "NSModalSession": "^", "NSRangePointer": "^", "NSRectArray": "^", "NSSizeArray": "^",
    "NSDecimal": "{NSDecimal}", "NSOperatingSystemVersion": "{NSOperatingSystemVersion=qqq}",
    "CGPoint": POINT, "NSPoint": POINT, "CGSize": SIZE, "NSSize": SIZE, "CGRect": RECT, "NSRect": RECT,
    "NSRange": "{_NSRange=QQ}", "NSEdgeInsets": "{NSEdgeInsets=dddd}",
    "dispatch_time_t": "Q", "DispatchTime": "Q", "CGEventMask": "Q", "CGEventTimestamp": "Q", "CGKeyCode": "S",
    "CGCharCode": "S", "Ivar": "^", "Method": "^", "CGEventTapProxy": "^", "CGEventTapCallBack": "^",
    "DispatchFunction": "^", "dispatch_function_t": "^", "dispatch_queue_t": "^"}

# Every other number of AppKit and Foundation is an enumeration of 64 bits, with or without a sign.
ENUMERATION = {"q", "Q"}


class Types:
    """The encodings of named types: the table above, classes, and what the bindings' own encodings teach."""

    def __init__(self, classes, learned):
        self.classes = classes
        self.learned = learned

    def codes(self, name, processor):
        """The encodings that a type may have in a call; none when it is not known."""
        if name == "BOOL":
            return {BOOL[processor]}
        if name in CODES:
            return {CODES[name]}
        if name in self.classes:
            return {"@"}
        if name.endswith("Ref"):
            return {"^"}
        if name in self.learned:
            return {self.learned[name]}
        return set(ENUMERATION) if name.startswith("NS") else set()


ENCODED = re.compile(r"\^*(?:\{[^=]*=(?:[^{}]|\{[^{}]*\})*\}|@\?|\^\?|[a-zA-Z@#:*?])")


def encoded_parts(text):
    """An Objective-C type encoding, result and arguments, as a list of single codes."""
    parts, position = [], 0
    while position < len(text):
        found = ENCODED.match(text, position)
        if not found:
            return []
        parts.append(found[0])
        position = found.end()
    return parts


def size(code):
    """Bytes of a result, to tell what fits into registers."""
    if code.startswith("{"):
        return sum(8 for letter in code.replace("CGPoint", "").replace("CGSize", "").replace("CGRect", "")
                   .partition("=")[2] if letter in "dqQ")
    return 8
