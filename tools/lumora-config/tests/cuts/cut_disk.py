"""What a power cut leaves of a folder, computed from the operations that changed it."""

import collections
import os
import pathlib

# The node of a folder.
FOLDER = object()


class File:
    """The bytes of a file, those of its last sync, and the changes since."""

    def __init__(self, content=b""):
        self.content, self.synced, self.changes = content, content, []

    def truncate(self, size):
        self.content = File.resize(self.content, size)
        self.changes.append((size, None))

    def write(self, offset, data):
        self.content = File.overwrite(self.content, offset, data)
        self.changes.append((offset, data))

    def sync(self):
        self.synced, self.changes = self.content, []

    def after_cut(self, generator):
        """Returns what is on the disk: a random part of the changes, or none of them without a generator."""
        content = self.synced
        kept = generator.randint(0, len(self.changes)) if generator else 0
        for place, data in self.changes[:kept]:
            content = File.resize(content, place) if data is None else File.overwrite(content, place, data)
        if generator and kept < len(self.changes) and self.changes[kept][1] is not None:
            offset, data = self.changes[kept]
            content = File.overwrite(content, offset, data[:generator.randint(0, len(data))])
        return content

    @staticmethod
    def resize(content, size):
        return content[:size].ljust(size, b"\0")

    @staticmethod
    def overwrite(content, offset, data):
        return content[:offset].ljust(offset, b"\0") + data + content[offset + len(data):]


class Disk:
    """A folder, and what a power cut would leave of it. Nodes are File or FOLDER, by their path."""

    def __init__(self):
        self.names, self.synced = {}, {}
        # By folder: changes of its names since its last sync. Each is a list of names with the new node or None.
        self.changes = collections.defaultdict(list)

    def place(self, path, content):
        """Changes a file from outside, for good; creates its folder. None: a folder."""
        for folder in reversed(pathlib.PurePosixPath(path).parents[:-1]):
            self.names[str(folder)] = self.synced[str(folder)] = FOLDER
        self.names[path] = self.synced[path] = FOLDER if content is None else File(content)

    def change(self, *names):
        folders = {os.path.dirname(path) for path, _ in names}
        if len(folders) != 1:
            raise ValueError(f"a change of two folders: {names}")
        Disk.carry_out(self.names, names)
        self.changes[folders.pop()].append(names)

    def apply(self, operation, arguments):
        """Carries out one operation of the record. Returns the paths whose file it replaced by another or removed."""
        path = arguments[0]
        match operation:
            case "create":
                self.change((path, File()))
            case "truncate":
                self.names[path].truncate(int(arguments[1]))
            case "write":
                # A stream's file is created where the library does not see it.
                if path not in self.names:
                    self.change((path, File()))
                self.names[path].write(int(arguments[1]), bytes.fromhex(arguments[2]))
            case "sync":
                self.names[path].sync()
            case "mkdir":
                self.change((path, FOLDER))
            case "sync-directory":
                for names in self.changes.pop(path, ()):
                    Disk.carry_out(self.synced, names)
            case "unlink":
                self.change((path, None))
                return (path,)
            case "rename":
                # Two names of one file remain.
                if self.names.get(arguments[1]) is not self.names[path]:
                    self.change((path, None), (arguments[1], self.names[path]))
                return path, arguments[1]
            case "link":
                self.change((arguments[1], self.names[path]))
                return (arguments[1],)
            case _:
                raise ValueError(f"unknown operation {operation}")
        return ()

    @staticmethod
    def carry_out(names, change):
        for path, node in change:
            names.pop(path, None)
            if node:
                names[path] = node

    def content(self, path):
        node = self.names.get(path)
        return node.content if isinstance(node, File) else None

    def after_cut(self, kind, generator):
        """Returns the content of each path, None for a folder."""
        names = dict(self.synced)
        for folder in sorted(self.changes):
            changes = self.changes[folder]
            kept = {"lost": 0, "names": len(changes), "random": generator.randint(0, len(changes))}[kind]
            for change in changes[:kept]:
                Disk.carry_out(names, change)
        contents = {}
        parts = {}  # a file with two names has one content
        for path in sorted(names):  # a folder is before what it contains
            folder, node = os.path.dirname(path), names[path]
            if folder and folder not in contents:
                continue
            if node is not FOLDER and id(node) not in parts:
                parts[id(node)] = node.after_cut(generator if kind == "random" else None)
            contents[path] = None if node is FOLDER else parts[id(node)]
        return contents
