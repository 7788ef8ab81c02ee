#!/usr/bin/env python3
"""Compares what clang says of Microsoft's layout with the host guide: the slots of every class that host and library
call each other through, and the pointers that the three class records take and give.

usage: compare_layout.py HOST-GUIDE TABLE-DUMP EMITTED-CODE
"""
import re
import sys

HANDLER = "IMessageHandler"
# Registered name: the interface behind the host's untyped pointers, the class, whether it has a message handler.
SERVICES = {
    "cpp.DBManager": ("IDBManager", "DBManager", False),
    "cpp.DBOperate": ("IDBOperate", "DBOperate", True),
    "cpp.Encryption": ("IEncryption", "Encryption", True),
}
OVERLOADS = {3: "in place", 4: "two paths"}  # the guide's words for overloads, by their number of parameters

failures = []


def verdict(subject, count, differences):
    print(f"{'FAILED' if differences else 'OK'}  {subject}: {count}")
    failures.extend(f"{subject}: {difference}" for difference in differences)


def guide_slots(text):
    """{class: {slot: operation}} of the tables whose first column is "slot"."""
    classes, columns = {}, []
    for line in text.splitlines():
        cells = [cell.strip() for cell in line.strip("|").split("|")]
        if not line.startswith("|"):
            columns = []
        elif cells[0] == "slot":
            columns = [cell.strip("`").split("::")[-1] for cell in cells[1:]]
            classes.update((column, {}) for column in columns)
        elif columns and cells[0].strip("-"):
            first, _, last = cells[0].partition("–")
            slots = range(int(first), int(last or first) + 1)
            for column, cell in zip(columns, cells[1:]):
                operations = [found.replace("`", "") for found in re.findall(r"destructor|`\w+`(?: \([^)]*\))?", cell)]
                if cell and len(operations) != len(slots):
                    sys.exit(f"host guide, slots {cells[0]} of {column}: not one operation for each slot: {cell}")
                classes[column].update(zip(slots, operations))
    return classes


def named(signatures):
    """{slot: operation}, the operations named as the guide does."""
    parsed = {}
    for slot, signature in signatures.items():
        name, parameters = re.search(r"(~?\w+)\((.*)\)", signature).groups()
        parsed[slot] = ("destructor" if name.startswith("~") else name, parameters.count(",") + bool(parameters))
    names = [name for name, _ in parsed.values()]
    return {
        slot: f"{name} ({OVERLOADS.get(count, f'parameters: {count}')})" if names.count(name) > 1 else name
        for slot, (name, count) in parsed.items()
    }


def compiled_slots(dump):
    """{class: {offset of the table pointer in the object: {slot: operation}}}"""
    classes = {}
    for name, body in re.findall(r"^VFTable indices for '(?:\w+::)*(\w+)'.*\n((?:.+\n)*)", dump, re.M):
        tables = classes.setdefault(name, {})
        offset = 0
        for line in body.splitlines():
            if pointer := re.search(r"vfptr at offset (\d+)", line):
                offset = int(pointer[1])
            else:
                slot, signature = line.split(" | ")
                tables.setdefault(offset, {})[int(slot)] = signature
    return {name: {offset: named(table) for offset, table in tables.items()} for name, tables in classes.items()}


def compare_slots(subject, expected, got):
    verdict(subject, "1 slot" if len(got) == 1 else f"{len(got)} slots", [
        f"slot {slot}: expected {expected.get(slot, 'nothing')}, got {got.get(slot, 'nothing')}"
        for slot in sorted(expected.keys() | got.keys()) if expected.get(slot) != got.get(slot)
    ])


def find(pattern, code, what):
    return re.search(pattern, code, re.M) or sys.exit(f"the emitted code holds no {what}")


class Function:
    """A function of the emitted code, in single assignments: tells from what a value was made."""

    def __init__(self, code, symbol):
        head, self.body = find(r"^define .*?" + re.escape(symbol) + r"\((.*)\{\n((?:.*\n)*?)\}$", code,
                               f"function {symbol}").groups()
        self.argument = (re.findall(r"%\d+", head) or [""])[0]
        self.made = dict(re.findall(r"^ +(%\d+) = (.*)$", self.body, re.M))

    def origins(self, value):
        if value == "null":
            return {"null"}
        if value == self.argument:
            return {"argument"}
        text = self.made[value]
        operation = text.split()[0]
        operands = re.findall(r"(?<=[ (])(?:%\d+\b|null\b)", text)
        if operation == "phi":
            return set().union(*map(self.origins, re.findall(r"\[ (%\d+|null),", text)))
        if operation == "select":
            return self.origins(operands[1]) | self.origins(operands[2])
        if operation == "bitcast":
            return self.origins(operands[0])
        if operation == "load":
            return {f"[{origin}]" for origin in self.origins(operands[0])}
        if offset := re.match(r"getelementptr [a-z ]*i8, .*, i64 (-?\d+)$", text):
            return {f"{origin} + {offset[1]}" for origin in self.origins(operands[0])}
        return {"new object"} if '@"??2@' in text else {f"({text})"}

    def results(self):
        return set().union(*map(self.origins, re.findall(r"^ +ret .*?(%\d+|null)$", self.body, re.M)))

    def virtual_calls(self):
        """The entry called and the object it is called on, of every call through a pointer."""
        calls = re.findall(r"call [^@\n]*?(%\d+)\(.*?(%\d+)", self.body)
        return {f"{entry} on {this}" for callee, object_ in calls
                for entry in self.origins(callee) for this in self.origins(object_)}


def compare_record(code, name, handler):
    """`handler`: where the class's message handler lies in its objects; None without one."""
    name_symbol = find(r'^(@".*?") = .* c"' + re.escape(name) + r'\\00"', code, f"text {name}")[1]
    record = find(r"^@.* = .*ClassInfo\" \{ (.*" + re.escape(name_symbol) + r".*)$", code, f"record of {name}")[1]
    create, destroy, get_handler = (Function(code, symbol) for symbol in re.findall(r'@"[^"]*"', record)[:3])
    checks = [
        ("create gives", {"new object"}, create.results() - {"null"}),
        ("destroy calls", {"[[argument]] on argument"}, destroy.virtual_calls()),
        ("getHandler gives", {"null"} if handler is None else {"null", f"argument + {handler}"}, get_handler.results()),
    ]
    verdict(name, f"{len(checks)} functions", [
        f"{what}: expected {' or '.join(sorted(expected))}, got {' or '.join(sorted(got)) or 'nothing'}"
        for what, expected, got in checks if expected != got
    ])


def main():
    guide, dump, code = (open(path, encoding="utf-8").read() for path in sys.argv[1:])
    expected, got = guide_slots(guide), compiled_slots(dump)
    implementations = {class_ for _, class_, _ in SERVICES.values()}
    for name in dict.fromkeys([*expected, *got]):
        if name not in implementations:
            compare_slots(name, expected.get(name, {}), got.get(name, {}).get(0, {}))
    for name, (interface, class_, handles) in SERVICES.items():
        tables = dict(got.get(class_, {}))
        compare_slots(f"{class_} as {interface}", expected.get(interface, {}), tables.pop(0, {}))
        offset, table = tables.popitem() if tables else (None, {})
        if handles or table:
            handler = dict(expected.get(HANDLER, {}))
            handler.pop(0, None)  # the compiler lists a class's destructor in its first table alone
            compare_slots(f"{class_} as {HANDLER}", handler if handles else {}, table)
        compare_record(code, name, offset)
    for failure in failures:
        print(failure, file=sys.stderr)
    sys.exit(1 if failures else 0)


main()
