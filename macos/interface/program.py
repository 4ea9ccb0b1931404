"""What the program asks of the platform, found in what the compiler makes of its sources.

Every message is an instance of a template in platform/Send.hpp, every method of a run-time class one of
platform/RuntimeClass.hpp. Unoptimised, all inline functions of platform/ included, their names stand in the compiler's
intermediate code with everything that matters: receiver, selector, result, arguments. So nothing needs to be listed.
"""
import json
import re
import subprocess
import sys
from collections import defaultdict
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass, field

from macos.sysroot import OLDEST_SYSTEM, dotted

FOLDERS = ("app", "remap", "settings")
HEADER_FOLDERS = ("platform", *FOLDERS)
STAND_IN_FOLDER = "desktop"
ON_MAC = sys.platform == "darwin"
COMPILER, DEMANGLER = ("clang++", "c++filt") if ON_MAC else ("clang++-19", "llvm-cxxfilt-19")
# The language as the application's build has it (macos/CMakeLists.txt). Nothing is optimised away, so that each
# instance of a template keeps its name.
OPTIONS = ["-std=c++20", "-O0", "-g0", "-fno-exceptions", "-fno-rtti", "-fno-threadsafe-statics"]


class ProgramError(Exception):
    """The sources cannot be examined; the text is for the person who builds."""


@dataclass
class Message:
    """One kind of message that the program sends."""
    receiver: str  # a class; empty when the program does not say which
    kind: str  # + to a class, - to an instance
    selector: str
    result: str  # C++ types, as passed
    arguments: list
    result_class: str  # what the program takes objects for; empty where it does not say
    argument_classes: list
    senders: list = field(default_factory=list)
    entry: str = "objc_msgSend"

    def __str__(self):
        return f"{self.kind}[{self.receiver} {self.selector}]"


@dataclass
class OwnMethod:
    """A method of one of the program's run-time classes."""
    owner: str
    superclass: str
    selector: str
    encoding: str


@dataclass
class Asked:
    """Everything that one processor's program asks."""
    processor: str
    messages: list = field(default_factory=list)
    methods: list = field(default_factory=list)
    protocols: dict = field(default_factory=lambda: defaultdict(set))  # by run-time class
    actions: dict = field(default_factory=dict)  # selectors that are handed on, with the function that does
    imports: set = field(default_factory=set)
    strays: list = field(default_factory=list)  # (function, what it reaches past platform::send)
    classes: set = field(default_factory=set)  # looked up by name


def own_files(root, pattern, folders):
    """Files of the repository, as paths from its root."""
    return sorted(str(path.relative_to(root)) for folder in folders for path in (root / folder).rglob(pattern))


def mac_options(root, headers, processor):
    """For one of a Mac's processors, elsewhere as macos/linux.cmake has it; using what the oldest system lacks is an
    error."""
    target = ["-target", f"{processor}-apple-macos{dotted(OLDEST_SYSTEM)}", "-Werror=unguarded-availability"]
    if ON_MAC:
        return target
    resources = subprocess.run([COMPILER, "-print-resource-dir"], capture_output=True, text=True, check=True)
    folders = [f"{headers}/libcxx/include", f"{resources.stdout.strip()}/include", f"{headers}/include"]
    return [*target, "-nostdinc", *(word for folder in folders for word in ("-isystem", folder)),
            "-include", str(root / "macos" / "libcxx_config.h")]


class Compiler:
    """Compiles the program's sources; without options for the machine at hand, where the stand-in is. `work` is a new
    folder of its own."""

    def __init__(self, root, work, options=()):
        self.root = root
        self.command = [COMPILER, *OPTIONS, *options, f"-I{root}"]
        # The headers of others, compiled once: parsing them is most of the work.
        work.mkdir()
        prefix, self.prefix = work / "system.hpp", work / "system.pch"
        prefix.write_text(system_includes(root))
        self.run("-x", "c++-header", str(prefix), "-o", str(self.prefix))

    def run(self, *options, source=None):
        """What the compiler prints for these options; `source` is read in place of a file."""
        if source is not None:
            options = [*options, "-x", "c++", "-"]
        done = subprocess.run([*self.command, *options], input=source, capture_output=True, text=True, check=False,
                              cwd=self.root)
        if done.returncode:
            raise ProgramError(f"the sources do not compile:\n{done.stderr.strip()}")
        return done.stdout

    def intermediate(self, *options, source=None):
        """The intermediate code, as text."""
        return self.run(*options, "-include-pch", str(self.prefix), "-S", "-emit-llvm", "-o", "-", source=source)

    def preprocessed(self, folders=HEADER_FOLDERS):
        """The headers and sources of these folders as this processor's compiler reads them, by file."""
        files = own_files(self.root, "*.hpp", folders) + own_files(self.root, "*.cpp", folders)
        text = self.run("-E", source="".join(f'#include "{name}"\n' for name in files))
        lines, current = defaultdict(list), None
        for line in text.splitlines():
            marker = re.match(r'# \d+ "(.*?)"', line)
            if marker:
                name = re.sub(rf"^(\./|{re.escape(str(self.root))}/)", "", marker[1])
                current = name if name in files else None
            elif current:
                lines[current].append(line)
        return {name: "\n".join(found) for name, found in lines.items()}


def includes(root, folders=HEADER_FOLDERS):
    """A source that includes every header of these folders."""
    return "".join(f'#include "{name}"\n' for name in own_files(root, "*.hpp", folders))


def compile_program(compiler):
    """The intermediate code of all that platform/ could do, whether used or not, and of the program's sources."""
    files = own_files(compiler.root, "*.cpp", FOLDERS)
    codes = [compiler.intermediate("-femit-all-decls", source=includes(compiler.root))]
    try:  # all at once, which takes a fifth of the time
        return [*codes, compiler.intermediate(source="".join(f'#include "{name}"\n' for name in files))]
    except ProgramError:  # one by one, since what is local to two files may bear one name
        return [*codes, *map(compiler.intermediate, files)]


def system_includes(root):
    """A source that includes the headers of others that the program includes."""
    names = set()
    for name in own_files(root, "*.hpp", HEADER_FOLDERS) + own_files(root, "*.cpp", FOLDERS):
        names.update(re.findall(r"^#include (<[^>]*>)", (root / name).read_text(), re.MULTILINE))
    return "".join(f"#if __has_include({name})\n#include {name}\n#endif\n" for name in sorted(names))


ENCODING = "8encodingE"  # how the mangled name of a registered method's encoding ends: `encoding` in platform/
FOLLOW = "macos/interface/program.py must follow"
SYMBOL = re.compile(r'@"?([\w.$]+)"?')
TEXT_CONSTANT = re.compile(r'^@"?([\w.$]+)"? = .*?c"((?:[^"\\]|\\[0-9A-F]{2})*)\\00"', re.MULTILINE)


@dataclass
class Code:
    """What matters of the intermediate code: which function uses which symbols, what is not defined, texts."""
    uses: dict = field(default_factory=dict)
    declared: set = field(default_factory=set)
    defined: set = field(default_factory=set)
    texts: dict = field(default_factory=dict)

    def read(self, text, linked):
        """Adds one file's code, which is `linked` or only looked at. Functions of one name are one function."""
        for name, content in TEXT_CONSTANT.findall(text):
            self.texts[name] = content
        for block in text.split("\n}\n"):
            start = block.find("\ndefine ")
            if start >= 0:
                name, *used = SYMBOL.findall(block[start:])
                self.uses.setdefault(name, set()).update(used)
        if linked:
            self.declared.update(re.findall(r'^declare [^@]*@"?([\w.$]+)"?\(', text, re.MULTILINE))
            self.declared.update(re.findall(r'^@"?([\w.$]+)"? = external ', text, re.MULTILINE))
        self.defined.update(self.uses, re.findall(r'^@"?([\w.$]+)"? = (?!external )', text, re.MULTILINE))


def demangled(names):
    """The C++ names, with texts among their template arguments as texts."""
    names = sorted(names)
    done = subprocess.run([DEMANGLER, "-n"], input="\n".join(names), capture_output=True, text=True, check=True)
    return dict(zip(names, map(with_texts, done.stdout.splitlines())))


def with_texts(name):
    """A platform::Literal as the text that it holds."""
    def text(found):
        codes = [int(code) for code in re.findall(r"\(char\)(-?\d+)", found[0])]
        return json.dumps(bytes(code & 0xFF for code in codes).decode(errors="replace"))
    return re.sub(r"platform::Literal<\d+ul>\{(?:char \[\d+\]\{[^}]*\})?\}", text, name)


BRACKET = re.compile(r'"(?:[^"\\]|\\.)*"|[<>(){}]')


def closing(name, position):
    """Where the bracket closes that is open before this position."""
    depth = 1
    for found in BRACKET.finditer(name, position):
        depth += {"<": 1, "(": 1, "{": 1, ">": -1, ")": -1, "}": -1}.get(found[0], 0)
        if depth == 0:
            return found.start()
    return len(name)


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


def template(name, prefix):
    """The template arguments of `prefix<...>` in a name, outside of other brackets; None when it is something else."""
    position = 0
    while position < len(name):
        if name.startswith(prefix + "<", position) and not name[position - 1:position].isalnum():
            start = position + len(prefix) + 1
            return split_balanced(name[start:closing(name, start)], ",")
        if name[position] in "<({":
            position = closing(name, position + 1)
        position += 1
    return None


def text_of(argument):
    """A template argument that is a text."""
    if not argument.startswith('"'):
        raise ProgramError(f"{argument} is not read as a text: {FOLLOW} platform/Encoding.hpp")
    return json.loads(argument)


def class_of(kind):
    """The class that a C++ type stands for; empty when it says nothing."""
    kind = re.sub(r"^platform::Lent<(.*)>$", r"\1", kind)
    found = re.fullmatch(r"(?:\w+::)*(\w+)(?:<.*>)?", kind)
    return found[1] if found and "::" in kind and found[1] not in ("NSObject", "nullptr_t") else ""


class Reader:
    """Reads what is asked out of the code."""

    def __init__(self, processor, code):
        self.code = code
        self.asked = Asked(processor)
        everything = set(code.uses) | {name for used in code.uses.values() for name in used}
        self.names = demangled(name for name in everything if name.startswith("_Z"))
        self.callers = defaultdict(set)
        for function, used in code.uses.items():
            for name in used:
                self.callers[name].add(function)

    def name(self, symbol):
        return self.names.get(symbol, symbol)

    def read(self):
        """Everything, from all functions."""
        for symbol, used in self.code.uses.items():
            self.read_function(symbol, self.name(symbol), used)
        if not self.asked.methods:
            raise ProgramError(f"no method of a run-time class is found: {FOLLOW} platform/RuntimeClass.hpp")
        self.asked.imports = {name for name in self.code.declared - self.code.defined
                              if not name.startswith(("_Z", "llvm."))}
        return self.asked

    def read_function(self, symbol, name, used):
        """One function: a message, a registration, or neither of them."""
        for prefix, read in (("platform::send", self.read_send), ("platform::sendSuper", self.read_super),
                             ("platform::make", self.read_make)):
            arguments = template(name, prefix) if prefix in name else None
            if arguments:
                read(symbol, arguments, used)
                return
        self.read_action(symbol, name)
        if name.startswith("platform::ClassNamed<") and name.endswith("::found() const"):
            self.asked.classes.add(text_of(template(name, "platform::ClassNamed")[0]))
        self.read_registration(name, used)
        self.read_stray(name, used)

    def read_action(self, symbol, name):
        """A selector that is not sent at once, but given to somebody who will send it."""
        selector = template(name, "platform::selectorNamed") if "selectorNamed<" in name else None
        for caller in sorted(map(self.name, self.callers[symbol])) if selector else ():
            if not re.match(r".*\bplatform::(wire::call|sendSuper|RuntimeClass)<", caller):
                self.asked.actions[text_of(selector[0])] = caller

    def sent(self, used, entry, ahead=0):
        """Result, arguments and way of the call that a message ends in; so many template arguments stand ahead."""
        for symbol in used:
            types = template(self.name(symbol), entry)
            if types:
                ways = {way for way in self.code.uses.get(symbol, ()) if way.startswith("objc_msgSend")}
                result, *arguments = types[ahead:]
                return result, arguments, " ".join(sorted(ways))
        raise ProgramError(f"a message does not end in {entry}: {FOLLOW} platform/Send.hpp")

    def add(self, symbol, receiver, kind, selector, classes, sent):
        """Notes one message. `classes` are those of result and arguments as the program names them."""
        result, arguments, entry = sent
        result_class, *argument_classes = map(class_of, classes)
        senders = sorted({self.name(caller) for caller in self.callers[symbol]})
        self.asked.messages.append(Message(receiver, kind, selector, result, arguments, result_class,
                                           argument_classes, senders, entry))

    def read_send(self, symbol, arguments, used):
        """send<selector, Result, Receiver, Arguments...>"""
        selector, result, receiver, *rest = arguments
        named = template(receiver, "platform::ClassNamed")
        if receiver == "objc_object*" and self.is_only_sent_by_make(symbol):
            return
        owner = text_of(named[0]) if named else class_of(receiver)
        self.add(symbol, owner, "+" if named else "-", text_of(selector), [result, *rest],
                 self.sent(used, "platform::wire::call", 2))

    def is_only_sent_by_make(self, symbol):
        """The initialiser's message, which is read from `make` with its class."""
        return all(template(self.name(caller), "platform::make") for caller in self.callers[symbol])

    def read_super(self, symbol, arguments, used):
        """sendSuper<superclass, selector, Result, Arguments...>"""
        superclass, selector, result, *rest = arguments
        self.add(symbol, text_of(superclass), "-", text_of(selector), [result, *rest],
                 self.sent(used, "platform::wire::callSuper"))

    def read_make(self, symbol, arguments, used):
        """make<class, initialiser, Result, Arguments...>"""
        owner, initialiser, result, *rest = arguments
        for called in used:
            send = template(self.name(called), "platform::send")
            if send and send[0] == initialiser and send[2] == "objc_object*":
                self.add(symbol, text_of(owner), "-", text_of(initialiser), [result, *rest],
                         self.sent(self.code.uses[called], "platform::wire::call", 2))

    def read_registration(self, name, used):
        """RuntimeClass<State, class, superclass>::method<selector, member>()"""
        owner = template(name, "platform::RuntimeClass")
        method = re.search(r'>::method<("[^"]*"), ', name)
        if owner and method:
            encodings = [self.code.texts[symbol] for symbol in used if symbol.endswith(ENCODING)]
            if not encodings:
                raise ProgramError(f"{name} registers no encoding that is read: {FOLLOW} platform/RuntimeClass.hpp")
            self.asked.methods.append(OwnMethod(text_of(owner[1]), text_of(owner[2]), text_of(method[1]),
                                                encodings[0]))

    def read_stray(self, name, used):
        """Only platform/'s templates may call the run-time's entries: another message would go unseen."""
        allowed = re.match(r".*\bplatform::(wire::call(Super)?|send|sendSuper|make)<", name)
        if allowed:
            return
        for symbol in used:
            called = self.name(symbol)
            if called.startswith("objc_msgSend") or re.match(r".*\bplatform::wire::call(Super)?<", called):
                self.asked.strays.append((name, called.partition("(")[0]))


def read_protocols(asked, text):
    """Which protocols the run-time classes say they follow, from `RuntimeClass<..., "Name", ...>` on."""
    for owner, chain in re.findall(r'RuntimeClass<[^"]*"(\w+)"([^;]*);', text):
        asked.protocols[owner].update(re.findall(r'conformsTo\("(\w+)"\)', chain))


def ask(root, work, headers, processor):
    """What the program asks of this processor's platform, and the compiler and preprocessed sources for more."""
    compiler = Compiler(root, work / processor, mac_options(root, headers, processor))
    code = Code()
    for index, text in enumerate(compile_program(compiler)):
        code.read(text, linked=index > 0)
    asked = Reader(processor, code).read()
    sources = compiler.preprocessed()
    for text in sources.values():
        read_protocols(asked, text)
    return asked, compiler, sources


def ask_all(root, work, headers, processors):
    """The same for several processors at once."""
    with ThreadPoolExecutor(2) as pool:
        return list(pool.map(lambda processor: ask(root, work, headers, processor), processors))
