"""Packs a bundle into a zip file that keeps permissions and links, and is the same for the same bundle."""
import os
import stat
import zipfile
from pathlib import Path

NEVER = (1980, 1, 1, 0, 0, 0)  # the zip format's first moment: the bundle's content alone makes the archive
UNIX = 3


def normalise_modes(bundle):
    """Permissions that do not depend on who built: all may read, and may run what is run."""
    for folder, folders, names in os.walk(bundle):
        for path in [Path(folder), *(Path(folder) / name for name in names)]:
            if not path.is_symlink():
                runs = path.is_dir() or path.parent.name == "MacOS" or path.stat().st_mode & stat.S_IXUSR
                path.chmod(0o755 if runs else 0o644)


def entries(bundle):
    """Every folder, file and link of the bundle, the bundle first, in a fixed order."""
    paths = [bundle]
    for folder, folders, names in os.walk(bundle):
        paths += [Path(folder) / name for name in folders + names]
    return sorted(paths)


def write(bundle, target):
    """Packs the bundle under its own name."""
    with zipfile.ZipFile(target, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as package:
        for path in entries(bundle):
            mode = path.lstat().st_mode
            name = path.relative_to(bundle.parent).as_posix()
            entry = zipfile.ZipInfo(name + "/" if stat.S_ISDIR(mode) else name, NEVER)
            entry.create_system = UNIX
            entry.external_attr = (0o120755 if stat.S_ISLNK(mode) else mode) << 16
            if stat.S_ISDIR(mode):
                entry.external_attr |= 0x10  # the same for systems that know no permissions
                content = b""
            else:
                content = os.readlink(path).encode() if stat.S_ISLNK(mode) else path.read_bytes()
                entry.compress_type = zipfile.ZIP_DEFLATED
            package.writestr(entry, content)
