"""The syntax tree of a source, as libclang tells it.

A node's place is where its text stands in the file: for what is an argument of a macro, the place
within the argument. What comes from the body of a macro has the place of the macro's whole use, so
that it begins where the use begins. Nothing of it is text of the file, so nothing of it is changed.

Only files below one folder are looked at; the headers around them are read and passed over."""

import ctypes
import pathlib

from clang import cindex

_PLACE = cindex.conf.lib.clang_getFileLocation
_PLACE.argtypes = [cindex.SourceLocation, ctypes.POINTER(cindex.c_object_p)] + \
    3 * [ctypes.POINTER(ctypes.c_uint)]
_PLACE.restype = None

MACROS_KEPT = cindex.TranslationUnit.PARSE_DETAILED_PROCESSING_RECORD


def _offset(location):
    """Where in its file a location is."""
    file = cindex.c_object_p()
    line, column, offset = ctypes.c_uint(), ctypes.c_uint(), ctypes.c_uint()
    _PLACE(location, ctypes.byref(file), ctypes.byref(line), ctypes.byref(column),
           ctypes.byref(offset))
    return offset.value


class Node:
    """A cursor with its place in the file."""

    def __init__(self, file, cursor):
        self.file = file
        self.cursor = cursor
        self.kind = cursor.kind.name
        self.begin = _offset(cursor.extent.start)
        self.end = _offset(cursor.extent.end)

    def text(self):
        """Its text; empty where it has none of its own."""
        return self.file.text[self.begin:self.end].decode()

    def children(self):
        """The nodes right below it."""
        return [Node(self.file, one) for one in self.cursor.get_children()]

    def is_of_macro(self):
        """Whether it begins with a use of a macro, or comes from the body of one."""
        return self.begin in self.file.macros

    def type_kind(self):
        """The kind of the type of an expression."""
        return self.cursor.type.get_canonical().kind.name


class File:
    """A file of a translation unit."""

    def __init__(self, path):
        self.path = path
        self.text = pathlib.Path(path).read_bytes()
        self.macros = {}  # where each use begins: its name and where it ends
        self.tops = []    # the outermost declarations


def files_of(source, flags, folder):
    """The files below the folder that a source is made of: itself, and headers of its."""
    unit = cindex.Index.create().parse(str(source), args=flags, options=MACROS_KEPT)
    wrong = [one.spelling for one in unit.diagnostics if one.severity >= cindex.Diagnostic.Error]
    if wrong:
        raise RuntimeError(f"{source} cannot be read: {wrong[0]}")
    files = {}
    for cursor in unit.cursor.get_children():
        where = cursor.location.file
        if where is None or not where.name.startswith(f"{folder}/"):
            continue
        if where.name not in files:
            files[where.name] = File(where.name)
        file = files[where.name]
        if cursor.kind.name == "MACRO_INSTANTIATION":
            extent = cursor.extent
            file.macros[extent.start.offset] = (cursor.spelling, extent.end.offset)
        elif not cursor.kind.is_preprocessing():
            file.tops.append(cursor)
    return list(files.values())
