"""Shows Doxygen the comments of a public header as documentation; prints the header with other marks, line for line.

    doxygen_comments.py HEADER

What the headers' style means is made explicit here: the comment at the head is the file's; a comment above a declaration
describes it and the declarations that follow without a gap; a comment behind one on its line describes that one; a
comment with a blank line below it is a heading, and comments within functions are nobody's documentation.
"""

import re
import sys

SCOPE = re.compile(r"\b(namespace|class|struct|enum|union)\b")
ACCESS = re.compile(r"\s*(public|protected|private):\s*$")


def without_texts(line: str) -> str:
    """The line without what stands in quotes, and without its comment."""
    line = re.sub(r'"(\\.|[^"\\])*"|\'(\\.|[^\'\\])*\'(?!\d)', '""', line)
    return line.split("//", 1)[0]


def escaped(text: str, in_code: bool = False) -> str:
    """Prose without anything that Doxygen would take for a command; what stands in backticks stays."""
    pieces = text.split("`")
    for i in range(1 if in_code else 0, len(pieces), 2):
        pieces[i] = re.sub(r"([\\@<>#%&*])", r"\\\1", pieces[i]).replace("::", "\\::")
    return "`".join(pieces)


def documentation(lines: list[str]) -> list[str]:
    """The lines of a comment, without their marks, as Doxygen is to read them: indented ones are verbatim."""
    result = []
    in_code = False  # a piece in backticks may end on a later line
    for text in lines:
        if text.startswith("    "):
            result.append("    " + text.strip())
            continue
        result.append(escaped(text.strip(), in_code))
        in_code ^= text.count("`") % 2 == 1
    return result


class Header:
    def __init__(self, lines: list[str]):
        self.lines = lines
        self.output: list[str] = []
        self.scopes: list[bool] = []  # of each open brace: does it hold declarations?
        self.statement = ""           # since the end of the last one
        self.run = ""                 # the comment that the declarations to come share
        self.first_of_run = False     # the first of them has it above itself
        self.parentheses = 0
        self.in_directive = False

    def among_declarations(self) -> bool:
        return all(self.scopes)

    def convert(self) -> list[str]:
        at = self.convert_head()
        while at < len(self.lines):
            line = self.lines[at]
            if line.lstrip().startswith("//") and self.among_declarations() and not self.statement.strip():
                at = self.convert_comment(at)
            else:
                at = self.convert_code(at)
        return self.output

    def convert_head(self) -> int:
        end = 0
        while end < len(self.lines) and self.lines[end].startswith("//"):
            end += 1
        self.output.append("/// @file")
        self.output += ["/// " + text for text in documentation([line[2:].removeprefix(" ") for line in self.lines[:end]])]
        if end < len(self.lines) and self.lines[end] == "#pragma once":
            end += 1  # so that the lines keep their numbers
        return end

    def convert_comment(self, at: int) -> int:
        end = at
        while end < len(self.lines) and self.lines[end].lstrip().startswith("//"):
            end += 1
        block = self.lines[at:end]
        self.run = ""
        heads_nothing = end == len(self.lines) or not self.lines[end].strip()
        if heads_nothing:
            self.output += block
            return end
        texts = documentation([line.lstrip()[2:].removeprefix(" ") for line in block])
        self.output += ["/// " + text for text in texts]
        self.run = "Of this group: " + " ".join(text.strip() for text in texts)
        self.first_of_run = True
        return end

    def convert_code(self, at: int) -> int:
        line = self.lines[at]
        if line.lstrip().startswith("#") or self.in_directive:
            self.in_directive = line.endswith("\\")
            self.output.append(line)
            return at + 1
        bare = without_texts(line)
        if self.among_declarations() and (not line.strip() or ACCESS.match(line)):
            self.run = ""
        begins = self.among_declarations() and not self.statement.strip() and bare.strip() not in ("", "}", "};")
        if begins and not bare.lstrip().startswith("}") and not ACCESS.match(line):
            line = self.documented(line)
        self.output.append(self.with_trailing(line))
        if not ACCESS.match(line):
            self.follow(bare)
        end = at + 1
        column = self.lines[at].find("//")
        if bare.strip() and column > 0:
            while end < len(self.lines) and self.lines[end].find("//") == column and not self.lines[end][:column].strip():
                self.output.append(" " * column + "///< " + escaped(self.lines[end][column + 2:].strip()))
                end += 1
        return end

    def documented(self, line: str) -> str:
        """The first line of a declaration, with the comment that it shares with those before it."""
        if line.startswith("QX_EXPORT const Class& classObject("):
            return f"/** The class object; programs say classOf. */ {line}"
        if not self.run:
            return line
        if self.first_of_run:
            self.first_of_run = False
            return line
        return f"/** {self.run.replace('*/', '* /')} */ {line.lstrip()}"

    def with_trailing(self, line: str) -> str:
        if not self.among_declarations():
            return line
        bare = without_texts(line)
        if not bare.strip() or line.lstrip().startswith("/**"):
            return line
        rest = line[len(bare):] if line.startswith(bare) else line[line.rfind("//"):] if "//" in line else ""
        if not rest.startswith("//") or bare.strip().startswith("}"):
            return line
        return line[:len(line) - len(rest)] + "///< " + escaped(rest[2:].strip())

    def follow(self, bare: str) -> None:
        for character in bare:
            if character in "(":
                self.parentheses += 1
            elif character in ")":
                self.parentheses -= 1
            if character == "{":
                head = re.sub(r"<[^<>]*>|\([^()]*\)", " ", self.statement)
                head = re.sub(r"template\s*<.*>", " ", head)
                holds = bool(SCOPE.search(head)) and "(" not in head and "=" not in head
                self.scopes.append(holds)
                self.statement = "" if holds else self.statement
                if holds:
                    self.run = ""
            elif character == "}":
                holds = self.scopes.pop()
                if holds:
                    self.run = ""
                if self.among_declarations():
                    # The end of a function's body is the end of its declaration; an initialiser's is not.
                    if holds or self.parentheses == 0:
                        self.statement = "" if not holds else "}"
            elif character == ";" and self.among_declarations() and self.parentheses == 0:
                self.statement = ""
            else:
                self.statement += character
        self.statement += " "
        if self.statement.strip() == "}":
            self.statement = ""


if __name__ == "__main__":
    with open(sys.argv[1], encoding="utf-8") as file:
        print("\n".join(Header(file.read().split("\n")).convert()))
