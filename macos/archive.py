"""Packs a bundle into a zip file that keeps permissions and links, and is the same for the same bundle."""
import os
import stat
import struct
import time
import zipfile
import zlib
from pathlib import Path

from macos import macho

UNIX = 3
PLAIN, RUNNABLE = 0o644, 0o755  # all may read, and may run what is a program
LOCAL_MAGIC, LOCAL_SIZE, CENTRAL_SIZE, END_SIZE = b"PK\3\4", 30, 46, 22  # of the zip format's parts, without names
EARLIEST, LATEST = 315532800, 4354819199  # 1980 and 2107, where the zip format's time begins and ends


class ArchiveError(Exception):
    """The archive cannot be read; the text names it."""


def expected_mode(path):
    """The permissions that a file or folder of a bundle has."""
    if path.is_dir():
        return RUNNABLE
    with path.open("rb") as file:
        return RUNNABLE if macho.is_macho(file.read(4)) else PLAIN


def normalise(bundle, moment):
    """Permissions and dates that do not depend on who built when."""
    for path in entries(bundle):
        if not path.is_symlink():
            path.chmod(expected_mode(path))
        os.utime(path, (moment, moment), follow_symlinks=False)


def entries(bundle):
    """Every folder, file and link of the bundle, the bundle first, in a fixed order."""
    paths = [bundle]
    for folder, folders, names in os.walk(bundle):
        paths += [Path(folder) / name for name in folders + names]
    return sorted(paths)


def content(path):
    """What the archive holds of a file, a link or a folder."""
    if path.is_symlink():
        return os.readlink(path).encode()
    return b"" if path.is_dir() else path.read_bytes()


def packed_name(bundle, path):
    """The name in the archive: below the bundle's own, and with a slash at a folder's end."""
    name = path.relative_to(bundle.parent).as_posix()
    return name + "/" if path.is_dir() and not path.is_symlink() else name


def write(bundle, target):
    """Packs the bundle under its own name."""
    with zipfile.ZipFile(target, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as package:
        for path in entries(bundle):
            status = path.lstat()
            entry = zipfile.ZipInfo(packed_name(bundle, path), time.gmtime(max(status.st_mtime, EARLIEST))[:6])
            entry.create_system = UNIX
            entry.external_attr = (stat.S_IFLNK | RUNNABLE if path.is_symlink() else status.st_mode) << 16
            if entry.is_dir():
                entry.external_attr |= 0x10  # the same for systems that know no permissions
            else:
                entry.compress_type = zipfile.ZIP_DEFLATED
            package.writestr(entry, content(path))


def compare(bundle, archive):
    """Sentences for what the archive holds otherwise than the bundle: names, kinds, permissions, bytes."""
    try:
        with zipfile.ZipFile(archive) as package:
            yield from compare_entries(bundle, package, archive.name)
            if not is_only_its_files(package, archive.read_bytes()):
                yield f"{archive.name} holds something before, between or behind its files"
    except FileNotFoundError:
        raise ArchiveError(f"{archive.name} is missing") from None
    except (OSError, EOFError, ValueError, RuntimeError, NotImplementedError, struct.error, zipfile.BadZipFile,
            zlib.error) as error:
        raise ArchiveError(f"{archive.name} cannot be unpacked: {error or type(error).__name__}") from None


def is_only_its_files(package, data):
    """Whether the files, the directory of them and its end are all: some unpackers go by the directory, others take
    whatever follows, and they must find the same."""
    position = 0
    for entry in package.infolist():
        if entry.header_offset != position or data[position:position + 4] != LOCAL_MAGIC:
            return False
        name_size, extra_size = struct.unpack_from("<2H", data, position + 26)
        position += LOCAL_SIZE + name_size + extra_size + entry.compress_size
    directory = sum(CENTRAL_SIZE + len(entry.orig_filename.encode()) for entry in package.infolist())
    return position == package.start_dir and position + directory + END_SIZE == len(data)


def compare_entries(bundle, package, archive):
    """The same for an archive that is open."""
    expected = {packed_name(bundle, path): path for path in entries(bundle)}
    names = package.namelist()
    for name in sorted({name for name in names if names.count(name) > 1}):
        yield f"{archive} holds {name} twice"
    for name in sorted(set(names) ^ set(expected)):
        yield f"{archive} {'lacks' if name in expected else 'holds'} {name}"
    for name in sorted(set(names) & set(expected)):
        path, entry = expected[name], package.getinfo(name)
        mode, wanted = entry.external_attr >> 16, path.lstat().st_mode
        if stat.S_IFMT(mode) != stat.S_IFMT(wanted):
            yield f"{archive} holds {name} as something else than the bundle does"
        elif not path.is_symlink() and mode != wanted:
            yield f"{archive} holds {name} with permissions {mode & 0o7777:o}, the bundle with {wanted & 0o7777:o}"
        elif entry.file_size != len(content(path)) or package.read(entry) != content(path):
            yield f"{archive} holds {name} with other content than the bundle"
