"""The platform as facts/ records it: classes, methods, functions, variables, constants, types."""
import difflib
from dataclasses import dataclass
from pathlib import Path

from macos.interface import abi
from macos.sysroot import OLDEST_SYSTEM

FACTS = Path(__file__).resolve().parent / "facts"
# darwinkit was made from macOS 12's headers: what it records, macOS 13 has. The other bindings follow newer systems.
# What belongs to the update framework comes with the application.
CERTAIN = {"darwinkit", "Sparkle"}
# Protocols whose methods a class answers besides its own and its superclasses'.
ADOPTED = {"NSView": ["NSUserInterfaceItemIdentification"], "NSWindow": ["NSUserInterfaceItemIdentification"]}


@dataclass
class Method:
    owner: str
    kind: str
    selector: str
    result: str
    arguments: list
    bindings: list
    first_version: tuple = None  # where somebody looked it up

    def __str__(self):
        return f"{self.kind}[{self.owner} {self.selector}]"

    @property
    def types(self):
        return [self.result, *self.arguments]


@dataclass
class Function:
    name: str
    library: str
    types: list


def table(folder, name, columns):
    """The rows of one table, its comments left out."""
    for line in (folder / name).read_text(encoding="utf-8").splitlines():
        if line and not line.startswith("#"):
            yield (line.split("\t") + [""] * columns)[:columns]


def split(types):
    return types.split("|") if types else []


class Facts:
    """All tables. The program's own classes may be added to them."""

    def __init__(self, folder=FACTS):
        self.superclasses, self.class_libraries = {}, {}
        for name, superclass, library in table(folder, "classes.tsv", 3):
            self.add_class(name, superclass, library)
        self.methods = {}
        for owner, kind, selector, result, arguments, bindings in table(folder, "methods.tsv", 6):
            self.add(Method(owner, kind, selector, result, split(arguments), bindings.split()))
        self.functions = {name: Function(name, library, [result, *split(arguments)])
                          for name, library, result, arguments, _ in table(folder, "functions.tsv", 5)}
        for row in table(folder, "supplement.tsv", 6):
            self.supplement(*row)
        self.variables = {name: (library, kind) for name, library, kind in table(folder, "data.tsv", 3)}
        self.constants = {name: values.split("|") for name, values in table(folder, "constants.tsv", 2)}
        self.types = abi.Types(self.superclasses, dict(table(folder, "types.tsv", 2)))

    def supplement(self, name, kind, selector, result, arguments, first):
        """One row that was looked up by hand."""
        if kind == "class":
            self.add_class(name, selector, result)
        elif kind == "function":
            self.functions[name] = Function(name, selector, [result, *split(arguments)])
        else:
            version = tuple(int(part) for part in first.split("."))
            self.add(Method(name, kind, selector, result, split(arguments), [], version))

    def add_class(self, name, superclass, library=""):
        self.superclasses[name] = superclass
        self.class_libraries[name] = library

    def add(self, method):
        self.methods.setdefault(method.owner, {})[method.kind, method.selector] = method

    def ancestors(self, name):
        """The class, its superclasses, and the protocols that they adopt."""
        seen = []
        while name and name not in seen:
            seen += [name, *ADOPTED.get(name, ())]
            name = self.superclasses.get(name, "")
        return seen

    def inherits(self, name, ancestor):
        return ancestor in self.ancestors(name)

    def find(self, owner, kind, selector):
        """The method that answers, or None."""
        for name in self.ancestors(owner):
            method = self.methods.get(name, {}).get((kind, selector))
            if method:
                return method
        return None

    def close(self, owner, kind, selector):
        """Selectors of the class that look like this one, as the end of a sentence."""
        known = {found for name in self.ancestors(owner)
                 for found_kind, found in self.methods.get(name, {}) if found_kind == kind}
        return close_to(selector, known)

    def delegate_method(self, selector):
        """The protocol's method of this name, or None."""
        for owner, methods in self.methods.items():
            if owner.endswith("Delegate") and ("-", selector) in methods:
                return methods["-", selector]
        return None

    def is_present(self, method):
        """Whether macOS 13 is known to have it."""
        if method.first_version:
            return method.first_version <= OLDEST_SYSTEM
        return bool(CERTAIN & set(method.bindings))


def close_to(name, known):
    """Names that look like this one, as the end of a sentence."""
    found = difflib.get_close_matches(name, sorted(known), 3, 0.7)
    return f"; close: {', '.join(found)}" if found else ""
