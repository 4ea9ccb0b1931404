"""Holds the messages that the program sends, and the methods that its classes and the stand-in's answer, against the
facts. Each function yields sentences."""
import re

from macos.interface import abi
from macos.interface.facts import close_to
from macos.sysroot import OLDEST_SYSTEM, dotted

CPP_CODES = {
    "void": "v", "bool": "B", "char": "c", "signed char": "c", "unsigned char": "C", "short": "s",
    "unsigned short": "S", "char16_t": "S", "int": "i", "unsigned int": "I", "long": "q", "unsigned long": "Q",
    "long long": "q", "unsigned long long": "Q", "float": "f", "double": "d", "objc_object*": "@", "objc_class*": "#",
    "objc_selector*": ":", "CGPoint": abi.POINT, "CGSize": abi.SIZE, "CGRect": abi.RECT,
    "platform::NSRange": "{_NSRange=QQ}", "platform::NSEdgeInsets": "{NSEdgeInsets=dddd}"}
REGISTER_BYTES = 16  # a larger result comes back through memory on x86-64


def cpp_code(kind):
    """The encoding of a C++ type; empty when it is not known."""
    return CPP_CODES.get(kind) or ("^" if kind.endswith("*") else "")


def single_codes(encoding):
    """A method's encoding as codes, every pointer the same; receiver and selector left out."""
    codes = ["^" if code.startswith("^") or code == "*" else code for code in abi.encoded_parts(encoding)]
    return codes[:1] + codes[3:] if codes[1:3] == ["@", ":"] else []


class Messages:
    """One processor's program against the facts."""

    def __init__(self, facts, asked):
        self.facts, self.asked = facts, asked
        self.processor = asked.processor
        self.own = {(method.owner, method.selector): method for method in asked.methods}
        for method in asked.methods:
            facts.add_class(method.owner, method.superclass)

    def check(self):
        """All sentences about messages and run-time classes."""
        for message in self.asked.messages:
            for sentence in self.check_message(message):
                yield f"{sentence} (sent by {sender(message)})"
        for method in self.asked.methods:
            yield from self.check_own(method)
        yield from self.check_actions()
        for function, called in self.asked.strays:
            yield f"{function} calls {called} itself, where no check sees what it sends; use platform::send"

    def check_message(self, message):
        """One message."""
        if message.receiver and message.receiver not in self.facts.superclasses:
            yield f"the facts know no class {message.receiver}{close_to(message.receiver, self.facts.superclasses)}"
            return
        own = self.own_method(message)
        method = None if own else self.facts.find(message.receiver or "NSObject", message.kind, message.selector)
        if own:
            yield from self.check_codes(message, [{code} for code in single_codes(own.encoding)], None)
        elif method:
            yield from self.check_signature(message, method)
        else:
            yield self.unknown(message)

    def own_method(self, message):
        """The method of one of the program's own classes that answers. An object of such a class may be held as one of
        its superclass, when the platform's class itself has no such method."""
        if message.kind == "+" or not message.receiver:
            return None
        candidates = self.facts.ancestors(message.receiver)
        if not self.facts.find(message.receiver, "-", message.selector):
            candidates += [owner for owner, _ in self.own if self.facts.inherits(owner, message.receiver)]
        return next((self.own[name, message.selector] for name in candidates
                     if (name, message.selector) in self.own), None)

    def unknown(self, message):
        """Why there is nothing to hold the message against."""
        if not message.receiver:
            return (f"{message.selector} is sent to an object of unknown class, and is no method of NSObject; send it "
                    "to a typed wrapper")
        other = "-" if message.kind == "+" else "+"
        if self.facts.find(message.receiver, other, message.selector):
            place = {"+": "a class", "-": "an instance"}
            return (f"{message.receiver} has {message.selector} as {place[other]} method, but the program sends it to "
                    f"{place[message.kind].replace('a class', 'the class')}")
        what = "class method" if message.kind == "+" else "method"
        return (f"{message.receiver} has no {what} {message.selector}"
                f"{self.facts.close(message.receiver, message.kind, message.selector)}")

    def check_signature(self, message, method):
        """Presence, types, classes of objects."""
        if not self.facts.is_present(method):
            yield self.too_new(method)
        if "?" in method.types:
            yield f"the facts leave the types of {method} open; state them in macos/interface/facts/supplement.tsv"
            return
        codes = [self.facts.types.codes(kind, self.processor) for kind in method.types]
        yield from self.check_codes(message, codes, method)
        yield from self.check_classes(message, method)

    def too_new(self, method):
        """The sentence about something that macOS 13 lacks, or may lack."""
        if method.first_version:
            return (f"{method} came with macOS {dotted(method.first_version)}, the program is for "
                    f"{dotted(OLDEST_SYSTEM)}")
        return (f"{method} is recorded for newer systems only; if macOS 13 has it, say since when in "
                "macos/interface/facts/supplement.tsv")

    def check_codes(self, message, codes, method):
        """The encodings of result and arguments, and the entry of the call."""
        kinds = [message.result, *message.arguments]
        if len(kinds) != len(codes):
            yield f"{message} takes {len(codes) - 1} arguments, the program passes {len(kinds) - 1}"
            return
        for index, (kind, expected) in enumerate(zip(kinds, codes)):
            found = cpp_code(kind)
            if found in expected and found:
                continue
            place = "answers" if index == 0 else f"takes as argument {index}"
            name = (method.types[index] + " ") if method else ""
            used = "the program expects" if index == 0 else "the program passes"
            yield f"{message} {place} {name}({' or '.join(sorted(expected)) or '?'}), {used} {kind} ({found or '?'})"
        expected = "objc_msgSendSuper" if "Super" in message.entry else "objc_msgSend"
        if self.processor == "x86_64" and abi.size(cpp_code(message.result)) > REGISTER_BYTES:
            expected += "_stret"
        if message.entry != expected:
            yield f"{message} answers {message.result}, which comes back through {expected}, not {message.entry}"

    def check_classes(self, message, method):
        """What the program takes objects for. Where the facts say `id`, anything goes."""
        actual = message.receiver if method.result == "instancetype" else method.result
        taken = message.result_class
        if taken and self.are_classes(actual, taken) and not self.facts.inherits(actual, taken):
            yield f"{message} answers {article(actual)}, the program takes it for {article(taken)}"
        for index, (wanted, given) in enumerate(zip(method.arguments, message.argument_classes), 1):
            if given and self.are_classes(wanted, given) and not self.facts.inherits(given, wanted):
                yield f"{message} takes {article(wanted)} as argument {index}, the program passes {article(given)}"

    def are_classes(self, *names):
        return all(name in self.facts.superclasses for name in names)

    def check_own(self, method):
        """A method of a run-time class: one of its superclass, of a protocol, or an action."""
        known = self.facts.find(method.superclass, "-", method.selector)
        if not known:
            known = self.facts.delegate_method(method.selector)
            if known and known.owner not in self.asked.protocols[method.owner]:
                yield (f"{method.owner} answers {method.selector} of {known.owner}, but does not conform to that "
                       "protocol")
        if known:
            yield from self.check_encoding(f"the program's {method.owner}", method.encoding, known)
        elif method.selector in self.asked.actions:
            expected = "v@:@" if ":" in method.selector else "v@:"
            if method.encoding != expected:
                yield (f"the action {method.selector} of the program's {method.owner} is registered as "
                       f"{method.encoding}; the platform calls actions as {expected}")
        elif not any(message.selector == method.selector for message in self.asked.messages):
            protocols = [name for name in self.asked.protocols[method.owner]]
            near = {selector for name in [*self.facts.ancestors(method.superclass), *protocols]
                    for _, selector in self.facts.methods.get(name, {})}
            yield (f"nobody calls {method.selector} of the program's {method.owner}: it is no method of "
                   f"{' or '.join([method.superclass, *sorted(protocols)])}, no action, and never sent"
                   f"{close_to(method.selector, near)}")

    def check_encoding(self, who, encoding, method):
        """A registered encoding against the method that it overrides or stands for."""
        codes = single_codes(encoding)
        expected = [self.facts.types.codes(kind, self.processor) for kind in method.types]
        if len(codes) != len(expected) or any(code not in allowed for code, allowed in zip(codes, expected)):
            wanted = [sorted(allowed)[0] if allowed else "?" for allowed in expected]
            yield (f"{who} answers {method.selector} as {encoding}; {method.owner} has it as "
                   f"{method.result} ({', '.join(method.arguments)}), that is {wanted[0]}@:{''.join(wanted[1:])}")

    def check_actions(self):
        """Selectors that are handed on as actions: somebody must answer them."""
        answered = {method.selector for method in self.asked.methods}
        for selector, function in self.asked.actions.items():
            if selector not in answered and not self.is_platform_action(selector):
                yield (f"no class of the program answers the action {selector}{close_to(selector, answered)} "
                       f"(named by {function})")

    def is_platform_action(self, selector):
        """Whether a class of the platform answers this as an action: with nothing, given the sender."""
        found = [methods["-", selector] for methods in self.facts.methods.values() if ("-", selector) in methods]
        return any(method.types == ["void", "id"] for method in found)


class StandIn(Messages):
    """The stand-in desktop's classes against the facts; its types are those of arm64."""

    def __init__(self, facts, asked, lines):
        super().__init__(facts, asked)
        self.rows = [line.split("\t") for line in lines]

    def check(self):
        """All sentences about the stand-in's classes."""
        for owner, superclass, kind, selector, encoding in self.rows:
            if owner not in self.facts.superclasses:
                yield f"the stand-in has a class {owner}, which the facts do not know"
            elif superclass and not self.facts.inherits(owner, superclass):
                yield (f"the stand-in makes {owner} a subclass of {superclass}; on the platform it is one of "
                       f"{self.facts.superclasses[owner]}")
            else:
                yield from self.check_method(owner, kind, selector, encoding)

    def check_method(self, owner, kind, selector, encoding):
        """One registered method."""
        known = self.facts.find(owner, kind, selector)
        if known:
            yield from self.check_encoding(f"the stand-in's {owner}", encoding, known)
        else:
            other = self.facts.find(owner, "-" if kind == "+" else "+", selector)
            detail = f"; the platform has {other}" if other else self.facts.close(owner, kind, selector)
            yield f"the stand-in has {kind}[{owner} {selector}], which the platform has not{detail}"


def sender(message):
    """Who sends it, in one or two names."""
    names = [re.sub(r"\(.*", "", name).replace("platform::", "") for name in message.senders]
    return ", ".join(names[:2]) + (", ..." if len(names) > 2 else "")


def article(name):
    return ("an " if name[:1] in "AEIOU" or name.startswith("NS") else "a ") + name
