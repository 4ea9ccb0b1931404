"""Makes the tables in facts/ from a folder of facts as the language bindings write them.

Bindings that are generated from the platform's headers decide (objc2; the open headers of libobjc and libdispatch); the
others fill what they leave out. A disagreement between the two kinds is printed, for a person to look at.
"""
import re
from collections import Counter, defaultdict
from pathlib import Path

import abi
from notations import Notations, encoded_parts, split_balanced

FACTS = Path(__file__).resolve().parent / "facts"
SHORT = {"objc2-generated": "objc2", "xamarin-macios": "xamarin", "core-foundation-rs": "core-foundation-rs"}
DECIDING = ("objc4", "libdispatch", "Sparkle", "objc2", "core-foundation-rs", "xamarin", "darwinkit")


def rows(folder, name):
    """The rows of one table, without its heading."""
    for line in (folder / name).read_text(encoding="utf-8").splitlines()[1:]:
        yield line.split("\t") + [""] * 8


def project(source):
    """The short name of the binding that a source belongs to."""
    name = source.split(":")[0].split("/")[-1]
    return SHORT.get(name, name)


def write(name, heading, lines):
    """One table, sorted, so that a new extraction shows what changed."""
    text = "".join("\t".join(line).rstrip() + "\n" for line in sorted(set(lines)))
    (FACTS / name).write_text(f"#{heading}\n{text}", encoding="utf-8")
    print(f"{name}: {len(lines)} rows, {len(text) // 1000} KB")


class Extraction:
    """Everything read, then merged."""

    def __init__(self, folder):
        self.folder = folder
        self.classes = {row[0]: (row[1], row[2]) for row in rows(folder, "classes.tsv")}
        known = set(self.classes) | {row[0] for row in rows(folder, "selectors.tsv")}
        self.notations = Notations(known | {"NSObject", "NSCharacterSet", "NSIndexSet", "NSAttributedString"})
        self.types = abi.Types(set(self.notations.classes.values()), {})
        self.codes = defaultdict(Counter)  # which encodings were seen for a type's name

    def method(self, row):
        """The result and argument types of one row of selectors.tsv, or None where the notation is beyond us."""
        _, _, selector, result, arguments, source = row[:6]
        binding = project(source)
        if binding == "pyobjc":
            return None
        if binding in ("objc2", "Sparkle"):
            parts = split_balanced(arguments.replace(" | ", ", "), ",")
        else:
            parts = [part for part in arguments.split(" | ") if part.strip()]
        read = {"objc2": self.notations.rust, "xamarin": self.notations.sharp, "darwinkit": self.notations.go,
                "Sparkle": self.notations.header}[binding]
        failing = re.match(r"Result<(.*), Retained<NSError>>$", result)
        if failing:
            result, selector = failing[1], selector.rstrip("_")
            answer = "BOOL" if result == "()" else read(result)
            types = [*map(read, parts), "pointer"]
        else:
            answer, types = read(result), [read(part) for part in parts]
        return (selector, answer, types) if len(types) == selector.count(":") else None

    def methods(self):
        """Merges the rows of each method."""
        found = defaultdict(dict)
        for row in rows(self.folder, "selectors.tsv"):
            signature = self.method(row)
            if signature and row[1] in "+-":
                found[row[0].strip("<>"), row[1], signature[0]][project(row[5])] = signature[1:]
        self.learn_from_methods(found)
        for (name, kind, selector), signatures in found.items():
            if selector in ("alloc", "new", "autorelease") and list(signatures) == ["darwinkit"]:
                continue  # it repeats NSObject's for every class
            result, arguments = self.decided(signatures, f"{kind}[{name} {selector}]")
            yield name, kind, selector, result, "|".join(arguments), " ".join(sorted(signatures))

    def decided(self, signatures, what):
        """The signature of the most trusted binding; its open types are filled from the others."""
        ranked = [signatures[binding] for binding in DECIDING if binding in signatures]
        result, arguments = ranked[0]
        types = [result, *arguments]
        for other_result, other_arguments in ranked[1:]:
            others = [other_result, *other_arguments]
            if len(others) != len(types):
                continue
            for index, (one, other) in enumerate(zip(types, others)):
                codes, other_codes = (self.types.codes(kind, "arm64") for kind in (one, other))
                if one == "?":
                    types[index] = other
                elif codes and other_codes and not codes & other_codes:
                    print(f"{what}: {one} or {other}")
        return types[0], types[1:]

    def learn(self, name, code):
        """Notes that a binding gives a named type this encoding."""
        if re.fullmatch(r"[A-Za-z_]\w*", name) and re.fullmatch(r"[a-zA-Z]", code):
            self.codes[name][{"l": "q", "L": "Q"}.get(code, code)] += 1

    def learn_from_methods(self, found):
        """Encodings of named types, from rows that have the encoding of the same method."""
        by_selector = defaultdict(list)
        for (_, _, selector), signatures in found.items():
            if "objc2" in signatures:
                by_selector[selector].append(signatures["objc2"])
        for row in rows(self.folder, "selectors.tsv"):
            codes = [code.strip() for code in row[4].split(" | ") if code.strip()]
            if project(row[5]) != "pyobjc" or len(codes) != row[2].count(":"):
                continue
            for result, arguments in by_selector[row[2]]:
                for name, code in zip([result, *arguments], [row[3], *codes]):
                    self.learn(name, code)

    def function(self, name, signature, binding):
        """The result and argument types that one row gives, or None."""
        rust = re.match(rf"fn {name}\((.*?)\)(?: -> (.*))?$", signature)
        if rust:
            parts = [part.partition(":")[2] for part in split_balanced(rust[1], ",") if ":" in part]
            return self.notations.rust(rust[2] or "()", "bool"), [self.notations.rust(part, "bool") for part in parts]
        header = re.match(rf"(.*?)\b{name}\((.*)\)$", signature)
        if header and binding in ("objc4", "libdispatch"):
            parts = [] if header[2].strip() in ("void", "") else split_balanced(header[2], ",")
            parts = [part if part.endswith("*") else re.sub(r"\b\w+$", "", part) for part in parts]
            return self.notations.header(header[1]), [self.notations.header(part) for part in parts]
        return None

    def functions(self):
        """Merges the rows of each function."""
        found, encodings, libraries = defaultdict(dict), {}, {}
        for row in rows(self.folder, "functions.tsv"):
            name, signature, source = row[:3]
            binding = project(source)
            libraries.setdefault(name, library_of(source))
            if binding == "pyobjc":
                encodings[name] = encoded_parts(signature.partition(": ")[2])
            else:
                types = self.function(name, signature, binding)
                if types:
                    found[name].setdefault(binding, types)
        for name, signatures in found.items():
            result, arguments = signatures[min(signatures, key=DECIDING.index)]
            codes = encodings.get(name, [])
            if len(codes) == 1 + len(arguments):
                for kind, code in zip([result, *arguments], codes):
                    self.learn(kind, code)
            yield name, libraries[name], result, "|".join(arguments), " ".join(sorted(signatures))

    def learned(self):
        """Named types whose encoding all sources agree on."""
        for name, seen in self.codes.items():
            if name in abi.CODES or name in ("BOOL", "?") or self.notations.class_named(name):
                continue
            if len(seen) > 1:
                print(f"{name}: encoded as {dict(seen)}")
            yield name, seen.most_common(1)[0][0]


def library_of(source):
    """The library whose header a binding's file describes."""
    path = source.split(":")[1]
    if "libdispatch" in source or path.startswith(("Dispatch/", "src/CoreFoundation/Dispatch")):
        return "System"
    if "objc4" in source or "ObjCRuntime" in path:
        return "objc"
    if "HIServices" in path:
        return "ApplicationServices"
    if "Carbon" in path:
        return "Carbon"
    found = re.search(r"(CoreFoundation|CoreGraphics|AppKit|Foundation|QuartzCore|UniformTypeIdentifiers)", path)
    if found:
        return found[1]
    return {"core-foundation-sys": "CoreFoundation", "core-graphics": "CoreGraphics"}.get(path.split("/")[0], "?")


def constants(folder):
    """Name and value; several values of one number are one."""
    seen = defaultdict(set)
    for name, value, _ in (row[:3] for row in rows(folder, "constants.tsv")):
        if value.startswith('"'):
            seen[name].add(value)
        else:
            number = float(value) if "." in value else int(value)
            if number == 2**64 - 1:
                number = -1
            seen[name].add(str(int(number) if number == int(number) else number))
    return [(name, "|".join(sorted(values))) for name, values in seen.items()]


def data(folder, notations):
    """Name, library and type of the exported variables."""
    for name, kind, framework in (row[:3] for row in rows(folder, "data.tsv")):
        if framework == "QuartzCore":
            continue
        yield name, {"Dispatch": "System"}.get(framework, framework), notations.rust(kind)


def extract(folder):
    """Writes all tables."""
    FACTS.mkdir(exist_ok=True)
    extraction = Extraction(folder)
    write("classes.tsv", "class\tsuperclass\tlibrary",
          [(name, *rest) for name, rest in extraction.classes.items()])
    write("methods.tsv", "class\tkind\tselector\tresult\targuments\tbindings", list(extraction.methods()))
    write("functions.tsv", "function\tlibrary\tresult\targuments\tbindings", list(extraction.functions()))
    write("types.tsv", "type\tencoding", list(extraction.learned()))
    write("data.tsv", "variable\tlibrary\ttype", list(data(folder, extraction.notations)))
    write("constants.tsv", "constant\tvalue", constants(folder))
