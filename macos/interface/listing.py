"""Lists what the program asks of the system, for tests/portable: the messages that it sends to the system's classes, a
line each of `kind class selector encoding`, and the symbols of macos/imports.txt, `symbol library name -`. The argument
is the processor."""
import os
import re
import sys
import tempfile
from pathlib import Path

from macos import sysroot
from macos.interface import abi, messages, program

ROOT = Path(__file__).resolve().parents[2]
UPDATER = "SPUStandardUpdaterController"  # comes with its framework, not with the system


def listing(processor):
    """The lines, sorted."""
    headers = None
    if not program.ON_MAC:
        headers = sysroot.fetch(Path(os.environ.get("XDG_CACHE_HOME") or Path.home() / ".cache") / "tarnwick")
    with tempfile.TemporaryDirectory() as work:
        asked, _, _ = program.ask(ROOT, Path(work), headers, processor)
    superclasses = {method.owner: method.superclass for method in asked.methods}
    overridden = re.compile("init|dealloc$")
    own = {method.selector for method in asked.methods if not overridden.match(method.selector)}
    for message in asked.messages:
        receiver = superclasses.get(message.receiver, message.receiver) or "NSObject"
        if receiver == UPDATER or message.selector in own:
            continue
        codes = [messages.cpp_code(kind).replace("^", "^v") for kind in (message.result, *message.arguments)]
        yield f"{message.kind} {receiver} {message.selector} {codes[0]}@:{''.join(codes[1:])}"
    for library in sysroot.read_libraries():
        for symbol in library.symbols:
            if symbol.processor in ("", processor):
                yield f"symbol {library.install_name} {symbol.name.removeprefix('_')} -"


if __name__ == "__main__":
    if sys.argv[1:] not in [[processor] for processor in abi.PROCESSORS]:
        print(f"macos.interface.listing: wants one processor, {' or '.join(abi.PROCESSORS)}", file=sys.stderr)
        sys.exit(2)
    try:
        print("\n".join(sorted(set(listing(sys.argv[1])))))
    except (program.ProgramError, sysroot.SysrootError) as error:
        sys.exit(f"./dev test: {error}")
