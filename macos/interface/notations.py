"""Reads the type notations of the language bindings that the facts come from, as the platform's own type names.

A type is given back as the platform writes it (`NSInteger`, `BOOL`, `NSString`, `CFStringRef`), an object of unknown
class as `id`, a pointer to anything else as `pointer`, a block as `block`, and what a notation leaves open as `?`.
"""
import re

RUST_SCALARS = {
    "()": "void", "Bool": "BOOL", "Sel": "SEL", "AnyClass": "Class", "c_float": "float", "c_double": "double",
    "f32": "float", "f64": "double", "c_char": "char", "c_schar": "char", "c_uchar": "unsigned char",
    "c_short": "short", "c_ushort": "unsigned short", "c_int": "int", "c_uint": "unsigned int", "c_long": "NSInteger",
    "c_ulong": "NSUInteger", "c_longlong": "long long", "c_ulonglong": "unsigned long long", "i8": "char",
    "u8": "unsigned char", "i16": "short", "u16": "unsigned short", "i32": "int", "u32": "unsigned int",
    "i64": "long long", "u64": "unsigned long long", "isize": "NSInteger", "usize": "NSUInteger",
    "libc::pid_t": "int"}
RUST_OBJECTS = {"AnyObject", "ObjectType", "KeyType", "AnchorType", "NSObject"}
RUST_WRAPPERS = re.compile(r"^(?:Option|Retained|CFRetained)<(.*)>$")
RUST_POINTER = re.compile(r"^(?:(&)(?:'static )?|&mut |\*mut |\*const )(.*)$|^NonNull<(.*)>$")

SHARP_SCALARS = {
    "void": "void", "bool": "BOOL", "string": "NSString", "nint": "NSInteger", "nuint": "NSUInteger",
    "nfloat": "CGFloat", "float": "float", "double": "double", "Selector": "SEL", "Class": "Class", "int": "int",
    "uint": "unsigned int", "long": "long long", "ulong": "unsigned long long", "short": "short",
    "ushort": "unsigned short", "byte": "unsigned char", "sbyte": "char"}
GO_SCALARS = {
    "void": "void", "": "void", "bool": "BOOL", "string": "NSString", "int": "NSInteger", "uint": "NSUInteger",
    "float64": "CGFloat", "float32": "float", "objc.Selector": "SEL", "objc.IClass": "Class", "objc.Class": "Class",
    "objc.IObject": "id", "objc.Object": "id", "unsafe.Pointer": "pointer", "int64": "long long",
    "uint64": "unsigned long long", "int32": "int", "uint32": "unsigned int", "int16": "short",
    "uint16": "unsigned short", "int8": "char", "uint8": "unsigned char", "Unichar": "unichar"}
STRUCTURES = {"CGRect", "CGSize", "CGPoint", "NSRect", "NSSize", "NSPoint", "NSRange", "NSEdgeInsets"}


class Notations:
    """The notations need to know which names are classes."""

    def __init__(self, classes):
        self.classes = {name.lower(): name for name in classes}

    def class_named(self, name):
        """The class as the platform spells it, or None."""
        return self.classes.get(name.lower())

    def rust(self, text, boolean="BOOL"):
        """A type of objc2 or core-foundation-rs. A plain `bool` is BOOL in methods, C's in functions."""
        text = re.sub(r"\s+", " ", text).strip().rstrip(",")
        if text == "bool":
            return boolean
        if text in RUST_SCALARS:
            return RUST_SCALARS[text]
        wrapped = RUST_WRAPPERS.match(text)
        if wrapped:
            return self.rust_object(wrapped[1]) if not text.startswith("Option") else self.rust(wrapped[1], boolean)
        if "block2::" in text:
            return "block"
        pointer = RUST_POINTER.match(text)
        if pointer:
            return self.rust_pointer(pointer[2] or pointer[3], shared=bool(pointer[1]))
        return re.sub(r"<.*>$", "", text)

    def rust_object(self, text):
        """What a counted reference refers to."""
        if text == "Self":
            return "instancetype"
        name = re.sub(r"<.*>$", "", text)
        if name.startswith(("CF", "CG")):
            return name + "Ref"
        return "id" if name in RUST_OBJECTS else self.class_named(name) or "id"

    def rust_pointer(self, text, shared):
        """What `&`, `*mut`, `*const` and NonNull point to: an object is an object, anything else is memory."""
        text = text.strip()
        name = re.sub(r"<.*>$", "", text)
        if name == "AnyClass":
            return "Class"
        if name in RUST_OBJECTS | {"ProtocolObject", "Self"}:
            return "id"
        if re.match(r"(CF|CG|AX)[A-Z]", name) and name not in STRUCTURES | {"CGFloat", "CFRange"}:
            return "CFTypeRef" if name == "CFType" else name + "Ref"
        if self.class_named(name):
            return self.class_named(name)
        return "id" if shared and name.startswith("NS") and name not in STRUCTURES else "pointer"

    def sharp(self, text):
        """A type of the C# binding."""
        text = re.sub(r"/\*.*?\*/", "", text)
        text = re.sub(r"\s+", " ", text).strip()
        if text in SHARP_SCALARS:
            return SHARP_SCALARS[text]
        if text == "instancetype":
            return text
        if text.startswith(("out ", "ref ")) or text.endswith("*"):
            return "pointer"
        if re.match(r"(Action|Func)\b", text):
            return "block"
        if text.endswith("[]") or re.match(r"NSArray<", text):
            return "NSArray"
        name = re.sub(r"<.*>$", "", text)
        if name in STRUCTURES:
            return name
        if name == "NSObject" or re.match(r"I(NS|CA)[A-Z]", name):
            return "id"
        return self.class_named(name) or "?"

    def go(self, text):
        """A type of the Go binding: no prefixes, interfaces with an I."""
        text = text.strip()
        if text in GO_SCALARS:
            return GO_SCALARS[text]
        if text.startswith("*"):
            return "pointer"
        if text.startswith("func("):
            return "block"
        if text.startswith("["):
            return "NSArray" if text != "[]byte" else "?"
        if text.startswith("map["):
            return "NSDictionary"
        name = text.rsplit(".", 1)[-1]
        if name in ("Rect", "Size", "Point"):
            return "CG" + name
        if name == "Range":
            return "NSRange"
        return self.class_named("NS" + name) or (name[0] == "I" and self.class_named("NS" + name[1:])) or "?"

    def header(self, text):
        """A type of a C header."""
        text = re.sub(r"\b(const|volatile|_Nonnull|_Nullable|__unused|struct)\b", "", text)
        text = re.sub(r"\s+", " ", text).strip().replace(" *", "*")
        if text.startswith("id<") or text == "Protocol*":
            return "id"
        if text.endswith("*"):
            return self.class_named(text[:-1]) or "pointer"
        return text


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


def split_balanced(text, separator):
    """Splits where no bracket is open. The arrow of a function type closes nothing."""
    parts, depth, current = [], 0, ""
    for character in text:
        if character in "<([":
            depth += 1
        elif character in ")]" or character == ">" and not current.endswith("-"):
            depth -= 1
        if character == separator and depth == 0:
            parts.append(current.strip())
            current = ""
        else:
            current += character
    return [part for part in [*parts, current.strip()] if part]
