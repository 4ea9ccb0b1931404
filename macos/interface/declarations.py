"""Holds the functions, variables and constants that the program declares, and what it imports, against the facts.

The compiler itself says what the declarations mean: a source is made that hands each of them to a template, and the
names of the instances are read.
"""
import re

from macos.interface.facts import close_to
from macos.interface.messages import cpp_code
from macos.interface.program import Code, demangled, includes, template, text_of
from macos.sysroot import OLDEST_SYSTEM, dotted

REPORT = """
#include <concepts>
namespace platform {}
namespace tarnwick {}
using namespace platform;
using namespace tarnwick;
namespace report {
template <platform::Literal name, class Result, class... Arguments> void function(Result (*)(Arguments...)) {}
template <platform::Literal name, class Type> void variable(Type*) {}
template <platform::Literal name, long long thousandths> void constant() {}
template <class Type, long size, bool isSigned> void enumeration() {}
template <std::integral Type> constexpr long long thousandths(Type value) { return 1000LL * static_cast<long>(value); }
template <std::floating_point Type> constexpr long long thousandths(Type value) { return 1000 * value; }
template <class Type> requires std::is_enum_v<Type> constexpr long long thousandths(Type value) {
  return thousandths(static_cast<std::underlying_type_t<Type>>(value));
}
template <class Type> void type() {
  if constexpr (std::is_enum_v<Type>) {
    using Under = std::underlying_type_t<Type>;
    enumeration<Type, sizeof(Under), std::is_signed_v<Under>>();
  }
}
template <class Result, class... Arguments> void types(Result (*)(Arguments...)) {
  type<Result>();
  (type<Arguments>(), ...);
}
void all() {
"""
C_BLOCK = re.compile(r'^extern "C" \{$', re.MULTILINE)
C_DECLARATION = re.compile(r'^extern "C" ([^{};]*[;{])', re.MULTILINE)
FUNCTION = re.compile(r"^(?!using|extern|typedef)[\w:* ]*?[ *](\w+)\([^;{}]*\);", re.MULTILINE)
VARIABLE = re.compile(r"^(?!struct \w+;|using |typedef )\w[^;(){}=\n]*[ *](\w+);", re.MULTILINE)
C_NAME = re.compile(r"^(?!using |typedef |struct \w+;)\w[\w:* ]*?[ *](\w+)(?:\(|(?: = [^;]*)?;)", re.MULTILINE)
EXTERN = re.compile(r"^extern \w[^;(){}=\n]*[ *](\w+);", re.MULTILINE)
PLATFORM_NAME = re.compile(r"^(?:NS|CF|CG|AX|UT)[A-Z]|^k(?:CF|CG|AX|VK|UT)|^DISPATCH_")
CONSTANT_NAME = re.compile(r"\bk(?:CF|CG|AX|UT|VK_)[A-Z0-9]\w*")
CONSTANT = re.compile(r"\bconstexpr ([\w:<> ]+?)[ *&]+(\w+)(?:\[\])?\s*(?:=\s*([^;]+?)|\{([^;]*)\});")
ENUMERATION = re.compile(r"\benum\s*\w*\s*(?::\s*[\w: ]+)?\{([^}]*)\}")
ACCESSIBILITY_TEXT = re.compile(r'"(AX[A-Z]\w*)"')
# One name, one value on each processor.
DIFFERING = {"NSTextAlignmentCenter": {"arm64": "1", "x86_64": "2"},
             "NSTextAlignmentRight": {"arm64": "2", "x86_64": "1"},
             "NSImageResizingModeStretch": {"arm64": "1", "x86_64": "0"},
             "NSImageResizingModeTile": {"arm64": "0", "x86_64": "1"}}
# What the platform calls back, as its documentation declares it.
CALLBACKS = {"CGEventTapCallBack": "__CGEvent* (*)(__CGEventTapProxy*, CGEventType, __CGEvent*, void*)",
             "dispatch_function_t": "void (*)(void*)", "DispatchFunction": "void (*)(void*)"}
INTEGERS = {(1, False): "C", (1, True): "c", (2, False): "S", (2, True): "s", (4, False): "I", (4, True): "i",
            (8, False): "Q", (8, True): "q"}
ALIASES = {"CFRunLoopModeRef": "CFStringRef"}
ANY_POINTER = {"CFTypeRef", "pointer", "id"}


def c_declarations(text):
    """What stands in `extern "C"`, without the bodies of functions and types."""
    yield from C_DECLARATION.findall(text)
    for start in C_BLOCK.finditer(text):
        depth, outer = 1, ""
        for character in text[start.end():]:
            depth += {"{": 1, "}": -1}.get(character, 0)
            if depth == 0:
                break
            outer += character if depth == 1 else ""
        yield outer


class Declarations:
    """The declarations that one compiler sees against the facts."""

    def __init__(self, facts, processor, compiler, sources):
        self.facts, self.processor, self.compiler = facts, processor, compiler
        self.sources = sources
        self.enumerations = {}
        self.checked = set()

    def check(self):
        """All sentences about functions, variables and constants."""
        functions = self.named(FUNCTION) & set(self.facts.functions)
        variables = self.named(VARIABLE) & set(self.facts.variables)
        constants = list(self.constants())
        reported = self.report(functions, variables, [entry for entry in constants if entry[2]])
        for name in reported:
            found = template(name, "report::enumeration")
            if found:
                self.enumerations[found[0]] = INTEGERS[int(found[1].rstrip("l")), found[2] == "true"]
        for name in sorted(reported):
            yield from self.check_reported(name)
        for name in sorted(self.named(FUNCTION) - functions):
            yield f"the platform has no function {name}{close_to(name, self.facts.functions)}"
        for name in sorted(self.named(VARIABLE) - variables):
            yield f"the platform has no variable {name}{close_to(name, self.facts.variables)}"
        for name, file, expression in constants:
            yield from self.check_constant_name(name, file, expression)
        yield from self.check_texts()
        yield from self.check_unread()

    def named(self, pattern):
        """What the C declarations of the program name."""
        return {name for text in self.sources.values() for declarations in c_declarations(text)
                for name in pattern.findall(declarations)}

    def constants(self):
        """The platform's constants that the program declares: name, file, and what says its value in C++."""
        for file, text in self.sources.items():
            for body in ENUMERATION.findall(text):
                for name, value in re.findall(r"\b(\w+)\s*=\s*([^,]+)", body):
                    if file.startswith("platform/"):
                        yield name, file, name
                    elif PLATFORM_NAME.match(name):
                        yield name, file, value
            for kind, name, value, braced in CONSTANT.findall(text):
                value = value or braced
                if PLATFORM_NAME.match(name) and "<" not in kind:
                    typed = kind != "auto" and not value.startswith('"')
                    yield name, file, f"static_cast<{kind}>({value})" if typed else value

    def report(self, functions, variables, constants):
        """The instances' names, as the compiler made them from the program's declarations."""
        lines = [includes(self.compiler.root), REPORT]
        for name in sorted(functions):
            lines.append(f'  function<"{name}">(&::{name});\n  types(&::{name});\n')
        for name in sorted(variables):
            lines.append(f'  variable<"{name}">(&::{name});\n')
        for name, _, expression in constants:
            if not expression.startswith('"'):
                lines.append(f'  constant<"{name}", thousandths({expression})>();\n')
        code = Code()
        code.read(self.compiler.intermediate(source="".join([*lines, "}\n}\n"])), linked=False)
        names = demangled(name for name in code.uses if name.startswith("_Z"))
        return [name for name in names.values() if "report::" in name]

    def check_reported(self, name):
        """One instance."""
        for prefix, check in (("report::function", self.check_function), ("report::variable", self.check_variable),
                              ("report::constant", self.check_constant)):
            arguments = template(name, prefix)
            if arguments:
                self.checked.add(text_of(arguments[0]))
                yield from check(text_of(arguments[0]), arguments[1:])

    def check_function(self, name, kinds):
        """Result and arguments of a function."""
        fact = self.facts.functions[name]
        if name.startswith("objc_msgSend"):
            return  # declared without types; each call has its own
        if len(kinds) != len(fact.types):
            yield f"{name} takes {len(fact.types) - 1} arguments, the program declares {len(kinds) - 1}"
            return
        for index, (kind, expected) in enumerate(zip(kinds, fact.types)):
            if not self.agrees(kind, expected):
                place = "answers" if index == 0 else f"takes as argument {index}"
                codes = " or ".join(sorted(self.facts.types.codes(expected, self.processor)))
                yield f"{name} {place} {expected} ({codes or '?'}), the program declares {kind} ({self.code(kind) or '?'})"

    def code(self, kind):
        """The encoding of a C++ type, of an enumeration that of its numbers."""
        return cpp_code(kind) or self.enumerations.get(kind) or ("^" if "(*)" in kind else "")

    def agrees(self, kind, expected):
        """Whether a C++ type is what the facts name."""
        if expected in CALLBACKS:
            return kind == CALLBACKS[expected]
        expected = ALIASES.get(expected, expected)
        code = self.code(kind)
        codes = self.facts.types.codes(expected, self.processor)
        if code in ("@", "#", ":") and expected not in ("id", "Class", "SEL"):
            return False
        if not codes:
            return code == "^" and not expected.startswith("?")
        if code not in codes and not (code == "^" and codes <= {"^", "@"}):
            return False
        structure = re.fullmatch(r"__(\w+)(?: const)?\*", kind)
        return expected in ANY_POINTER or not structure or not expected.endswith("Ref") or \
            structure[1] == expected.removesuffix("Ref")

    def check_variable(self, name, kinds):
        """An exported variable: all that the program uses are pointers or structures' addresses."""
        fact = self.facts.variables[name][1]
        kind = kinds[0].removesuffix(" const")
        expected = self.facts.types.codes(fact, self.processor) or {"^", ""}
        found = "@" if kind.startswith("objc_object") else cpp_code(kind)
        pointers = {"^", "@"}
        if found not in expected and not (found in pointers and expected & pointers):
            yield f"{name} is {fact} ({' or '.join(sorted(expected))}), the program declares {kind}"

    def check_constant(self, name, values):
        """A number."""
        if name not in self.facts.constants and name not in DIFFERING:
            return
        thousandths = int(values[0].rstrip("l"))
        known = [DIFFERING[name][self.processor]] if name in DIFFERING else self.facts.constants[name]
        if not any(same_number(value, thousandths) for value in known):
            shown = thousandths // 1000 if thousandths % 1000 == 0 else thousandths / 1000
            yield f"{name} is {' or '.join(known)} on the platform, the program has {shown}"

    def check_constant_name(self, name, file, expression):
        """A constant that the facts do not know, or a text."""
        known = self.facts.constants.get(name)
        if known is None and name not in DIFFERING:
            yield f"{file}: the platform has no constant {name}{close_to(name, self.facts.constants)}"
        elif expression.startswith('"') and expression not in known:
            yield f"{file}: {name} is {' or '.join(known)} on the platform, the program has {expression}"

    def check_unread(self):
        """A constant that is written in another way than the ones above would go unchecked."""
        read = {name for name, *_ in self.constants()} | self.named(VARIABLE)
        for file, text in self.sources.items():
            for name in sorted(set(CONSTANT_NAME.findall(text)) - read):
                yield f"{file}: the declaration of {name} is not understood; write `constexpr TYPE {name} = VALUE;`"

    def check_texts(self):
        """Accessibility's names are texts; a wrong one is silently unknown there. A variable's text is its name without
        the k; functions, which the stand-in lets fail by name, and the type of its objects have such names too."""
        known = {value.strip('"') for values in self.facts.constants.values() for value in values
                 if value.startswith('"AX')}
        known |= {name.removeprefix("k") for name in self.facts.variables} | set(self.facts.functions) | {"AXUIElement"}
        for file, text in self.sources.items():
            for name in sorted(set(ACCESSIBILITY_TEXT.findall(text)) - known):
                yield f'{file}: Accessibility knows no "{name}"{close_to(name, known)}'


class StandInDeclarations(Declarations):
    """What the stand-in declares by itself. What platform/ declares too, it must take from there: of two declarations
    one may change, and only those of platform/ are held against the platform in all their types."""

    def __init__(self, platform, sources):
        super().__init__(platform.facts, platform.processor, platform.compiler, sources)
        self.platform = platform

    def check(self):
        """All sentences about names of the platform in the stand-in's files."""
        known = {name for name, *_ in self.platform.constants()}
        again = [(name, file) for name, file, _ in self.constants() if name in known]
        declared = self.platform.named(C_NAME)
        for file, text in self.sources.items():
            for declarations in c_declarations(text):
                again += [(name, file) for name in FUNCTION.findall(declarations) + EXTERN.findall(declarations)
                          if name in declared]
                for name in sorted(set(C_NAME.findall(declarations)) - declared):
                    yield (f"{file}: {name} is not declared in platform/, where its types would be held against the "
                           f"platform's{close_to(name, declared)}")
        for name, file in sorted(again):
            yield f"{file} declares {name} again; platform/ has it"
        own = [entry for entry in self.constants() if entry[0] not in known]
        for name in self.report((), (), own):
            yield from self.check_reported(name)
        for name, file, expression in own:
            yield from self.check_constant_name(name, file, expression)
        yield from self.check_texts()


def same_number(value, thousandths):
    """Whether a fact's number is this one. All ones are minus one."""
    if value.startswith('"'):
        return False
    wanted = int(float(value) * 1000) if "." in value else int(value) * 1000
    return (wanted - thousandths) % (1000 << 64) == 0 or wanted == thousandths


def check_imports(facts, libraries, asked):
    """The table of imports against the facts, and what the program imports against the table."""
    listed = set()
    for library in libraries:
        for symbol in library.symbols:
            name = symbol.name.removeprefix("_")
            if symbol.processor in ("", asked.processor):
                listed.add(name)
            if symbol.first_version > OLDEST_SYSTEM:
                version, oldest = map(dotted, (symbol.first_version, OLDEST_SYSTEM))
                yield f"macos/imports.txt: {name} came with macOS {version}, the program is for {oldest}"
            known = home(facts, name)
            if known and known != library.name:
                yield f"macos/imports.txt takes {name} from {library.name}; {known} has it"
            elif not known and library.name != "System":
                yield (f"macos/imports.txt takes {name} from {library.name}, but the facts know no such symbol"
                       f"{close_to(name, {*facts.functions, *facts.variables})}")
    for name in sorted(asked.imports - listed):
        known = home(facts, name)
        yield f"the program uses {name}{f' of {known}' if known else ''}, which macos/imports.txt does not list"


def home(facts, name):
    """The library that has a function or variable, or nothing."""
    if name in facts.functions:
        return facts.functions[name].library
    return facts.variables.get(name, [""])[0]


def check_class_libraries(facts, libraries, asked):
    """A class is found at run time only when its library is loaded."""
    own = {method.owner for method in asked.methods}
    linked = {library.name for library in libraries}
    for name in sorted(asked.classes - own):
        library = facts.class_libraries.get(name)
        if library is None:
            yield (f"the program looks up the class {name}, which the facts do not know"
                   f"{close_to(name, facts.superclasses)}")
        elif library and library not in linked:
            yield f"the program looks up the class {name} of {library}, which macos/imports.txt does not link"
