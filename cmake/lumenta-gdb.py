"""How gdb shows the values of Lumenta core: as their debug output does.

gdb loads this file together with the library, which it recognises by path and
name: see share/gdb/auto-load. From elsewhere: `source lumenta-gdb.py`.
"""
import gdb
import gdb.printing


def numbers(values):
    """The precision of floats that QDebug has."""
    return ", ".join("%.6g" % float(value) for value in values)


def show_members(value):
    kind = value.type.strip_typedefs()
    return "%s(%s)" % (kind.name.split("<")[0], numbers(value[field] for field in kind.fields()))


def show_box(value):
    return "TBBox(%s, %s)" % (show_members(value["min"]), show_members(value["max"]))


def show_rows(value, name, width, shown):
    rows = range(0, value["m"].type.range()[1] + 1, width)
    return "%s(%s)" % (name, "; ".join(numbers(value["m"][row + i] for i in range(shown)) for row in rows))


def show_matrix(value):
    return show_rows(value, "Matrix", 4, 4)


def show_matrix2(value):
    return show_rows(value, "Matrix2", 3, 2)


def printer(show):
    """One text, with nothing to unfold."""
    class Printer:
        def __init__(self, value):
            is_reference = value.type.strip_typedefs().code == gdb.TYPE_CODE_REF
            self.value = value.referenced_value() if is_reference else value

        def to_string(self):
            return show(self.value)
    return Printer


printers = gdb.printing.RegexpCollectionPrettyPrinter("lumenta-core")
printers.add_printer("TVec2", "^TVec2<.*>$", printer(show_members))
printers.add_printer("TVec3", "^TVec3<.*>$", printer(show_members))
printers.add_printer("TBBox", "^TBBox<.*>$", printer(show_box))
printers.add_printer("ColorF", "^ColorF$", printer(show_members))
printers.add_printer("Matrix", "^Matrix$", printer(show_matrix))
printers.add_printer("Matrix2", "^Matrix2$", printer(show_matrix2))
gdb.printing.register_pretty_printer(gdb.current_objfile(), printers, replace=True)
