"""Which changes a file can have: each replaces one piece of text.

A change is (begin, end, new text). Those of a use of a macro whose argument is a condition
(an assertion) are of the argument alone.

What is changed:

    operators     == to != and back; < to <= and >=; && to || and back; + to - and back; * to /;
                  & to |; += to -=; ++ to --; `!` and `-` left out
    numbers       n to n + 1, and to 0
    truth values  true to false and back
    conditions    of `if` and `?:` negated, always true, never true; of a loop never true
    statements    a call, an assignment, a trace, an assertion, break, continue left out;
                  a return left out where the function goes on behind it
    results       a truth value negated, a number 0 or one more, anything else empty

The step of a loop is left as it is, since most changes of it end in a loop without an end. Texts
are no constants of these."""

import re

from mutating.syntax import Node

SWAPS = {
    "==": ["!="], "!=": ["=="], "<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="],
    ">=": [">", "<"], "&&": ["||"], "||": ["&&"], "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"],
    "%": ["*"], "&": ["|"], "|": ["&"], "^": ["&"], "<<": [">>"], ">>": ["<<"],
    "+=": ["-="], "-=": ["+="], "&=": ["|="], "|=": ["&="], "*=": ["/="], "/=": ["*="],
}
COMPARISONS = ("==", "!=", "<", "<=", ">", ">=")
FUNCTIONS = ("CXX_METHOD", "FUNCTION_DECL", "CONSTRUCTOR", "DESTRUCTOR", "FUNCTION_TEMPLATE",
             "CONVERSION_FUNCTION")
SCOPES = ("NAMESPACE", "CLASS_DECL", "STRUCT_DECL", "CLASS_TEMPLATE")
INTEGERS = ("INT", "UINT", "LONG", "ULONG", "LONGLONG", "ULONGLONG", "SHORT", "USHORT", "UCHAR",
            "SCHAR")
DECLARED = ("VAR_DECL", "DECL_STMT")
LOOPS = ("FOR_STMT", "WHILE_STMT")
KINDS_OF_STATEMENT = ("CALL_EXPR", "UNEXPOSED_EXPR", "BINARY_OPERATOR", "UNARY_OPERATOR",
                      "COMPOUND_ASSIGNMENT_OPERATOR", "PAREN_EXPR", "DO_STMT", "BREAK_STMT",
                      "CONTINUE_STMT", "CXX_DELETE_EXPR", "CXX_THROW_EXPR")


class Finder:
    """Finds the changes of one file, each with its function."""

    def __init__(self, file):
        self.file = file
        self.found = {}     # (begin, end, new text): function
        self.function = ""  # that is being looked through

    def all(self):
        """All of them, in the order of the file."""
        for cursor in self.file.tops:
            self.visit(Node(self.file, cursor), [])
        return sorted((*change, function) for change, function in self.found.items())

    def add(self, begin, end, new):
        """One more, unless the file has no text there."""
        if begin < end and self.file.text[begin:end].decode() != new:
            self.found.setdefault((begin, end, new), self.function)

    def visit(self, node, above):
        """Looks at a node and at everything below it."""
        if node.kind in ("STATIC_ASSERT", "TYPE_REF", "NAMESPACE_REF", "STRING_LITERAL"):
            return
        outer = self.function
        if node.kind in FUNCTIONS or (node.kind == "VAR_DECL" and not above):
            self.function = qualified(node.cursor)
        children = node.children()
        self.look_at(node, children, above)
        below = above if node.kind in SCOPES else above + [node]
        for child in children:
            self.visit(child, below)
        self.function = outer

    def look_at(self, node, children, above):
        """The changes of the node itself."""
        look = {
            "BINARY_OPERATOR": self.binary, "COMPOUND_ASSIGNMENT_OPERATOR": self.binary,
            "CALL_EXPR": self.overloaded, "UNARY_OPERATOR": self.unary,
            "INTEGER_LITERAL": self.number, "CXX_BOOL_LITERAL_EXPR": self.truth,
            "IF_STMT": self.branch, "CONDITIONAL_OPERATOR": self.choice, "FOR_STMT": self.loop,
            "WHILE_STMT": self.loop, "COMPOUND_STMT": self.statements, "RETURN_STMT": self.result,
        }.get(node.kind)
        if look:
            look(node, children, above)

    # --- Operators

    def binary(self, _node, children, _above):
        """A built-in operator with two operands."""
        if len(children) == 2:
            self.swap(children[0].end, children[1].begin, SWAPS)

    def overloaded(self, node, children, _above):
        """A comparison of objects."""
        name = node.cursor.spelling.removeprefix("operator")
        if name in COMPARISONS and len(children) == 3:
            self.swap(children[0].end, children[2].begin, SWAPS)

    def swap(self, begin, end, swaps):
        """The operator that stands alone between two places."""
        between = self.file.text[begin:end].decode()
        operator = between.strip()
        for new in swaps.get(operator, []):
            at = begin + between.index(operator)
            self.add(at, at + len(operator), new)

    def unary(self, node, children, above):
        """A built-in operator with one operand."""
        if len(children) != 1 or (above and above[-1].kind in LOOPS):
            return
        operand = children[0]
        operator = self.file.text[node.begin:operand.begin].decode().strip()
        if operator in ("!", "-"):
            self.add(node.begin, operand.begin, "")
        elif operator in ("++", "--"):
            self.add(node.begin, operand.begin, "--" if operator == "++" else "++")

    # --- Constants

    def number(self, node, _children, _above):
        """A number."""
        parts = re.fullmatch(r"(0x[0-9a-fA-F]+|[0-9]+)([uUlL]*)", node.text())
        if parts and not node.is_of_macro():
            value = int(parts[1], 0)
            self.add(node.begin, node.end, f"{value + 1}{parts[2]}")
            if value != 0:
                self.add(node.begin, node.end, f"0{parts[2]}")

    def truth(self, node, _children, _above):
        """A truth value."""
        if not node.is_of_macro():
            self.add(node.begin, node.end, "false" if node.text() == "true" else "true")

    # --- Conditions

    def branch(self, node, children, _above):
        """An `if`, with a condition or with a variable that is one."""
        if node.is_of_macro() or len(children) < 2:
            return
        first = children[0]
        if first.kind == "VAR_DECL":
            for new in (f"!{first.cursor.spelling}", "true", "false"):
                self.add(first.begin, first.end, f"{first.text()}; {new}")
        else:
            self.condition(children[1] if first.kind == "DECL_STMT" else first)

    def choice(self, node, children, _above):
        """A `?:`."""
        if not node.is_of_macro() and len(children) == 3:
            self.condition(children[0])

    def condition(self, node):
        """A condition that is negated, always holds, or never."""
        for new in ("true", "false"):
            self.add(node.begin, node.end, new)
        if not is_negated_by_operator(node):
            self.add(node.begin, node.end, f"!( {node.text()} )")

    def loop(self, node, children, _above):
        """A loop that is never passed through."""
        held = {"FOR_STMT": (4, 1), "WHILE_STMT": (2, 0)}[node.kind]
        if not node.is_of_macro() and len(children) == held[0]:
            condition = children[held[1]]
            if condition.kind not in DECLARED:
                self.add(condition.begin, condition.end, "false")

    # --- Statements and results

    def statements(self, _node, children, above):
        """The statements of a block, each left out."""
        for child in children:
            if child.kind == "RETURN_STMT":
                if goes_on_behind(child, above):
                    self.leave_out(child)
            elif child.kind in KINDS_OF_STATEMENT:
                self.leave_out(child)

    def leave_out(self, node):
        """A statement; its line breaks and its semicolon stay."""
        if node.is_of_macro():
            end = self.file.macros[node.begin][1]
        else:
            end = node.end
        if self.file.text[end:].lstrip().startswith(b";"):
            self.add(node.begin, end, "")

    def result(self, node, children, above):
        """What a function returns."""
        if len(children) != 1 or node.is_of_macro():
            return
        given = children[0]
        kind = given.type_kind()
        if kind == "BOOL":
            if given.kind != "CXX_BOOL_LITERAL_EXPR" and not is_negated_by_operator(given):
                self.add(given.begin, given.end, f"!( {given.text()} )")
        elif kind in INTEGERS:
            if given.kind != "INTEGER_LITERAL":
                self.add(given.begin, given.end, "0")
                self.add(given.begin, given.end, f"( {given.text()} ) + 1")
        elif above and result_kind(above) in ("RECORD", "POINTER", "ELABORATED"):
            self.add(given.begin, given.end, "{}")


def is_negated_by_operator(node):
    """Whether the change of its operator negates it already."""
    while node.kind == "UNEXPOSED_EXPR" and len(node.children()) == 1:
        node = node.children()[0]
    if node.kind == "UNARY_OPERATOR":
        return node.text().startswith("!")
    children = node.children()
    if node.kind == "BINARY_OPERATOR" and len(children) == 2:
        between = node.file.text[children[0].end:children[1].begin].decode().strip()
        return between in ("==", "!=")
    return node.kind == "CALL_EXPR" and node.cursor.spelling in ("operator==", "operator!=")


def result_kind(above):
    """The kind of the result of the function around, and nothing within a lambda."""
    for node in reversed(above):
        if node.kind == "LAMBDA_EXPR":
            return ""
        if node.kind in FUNCTIONS:
            return node.cursor.result_type.get_canonical().kind.name
    return ""


def goes_on_behind(node, above):
    """Whether statements follow the one that holds the return, in the body of its function."""
    body = None
    for one in above:
        if one.kind in FUNCTIONS or one.kind == "LAMBDA_EXPR":
            body = None
        elif one.kind == "COMPOUND_STMT" and body is None:
            body = one
    return body is not None and body.children()[-1].begin > node.begin


def qualified(cursor):
    """The full name of a declaration."""
    names = []
    while cursor is not None and cursor.kind.name != "TRANSLATION_UNIT":
        if cursor.spelling:
            names.append(cursor.spelling)
        cursor = cursor.semantic_parent
    return "::".join(reversed(names))
