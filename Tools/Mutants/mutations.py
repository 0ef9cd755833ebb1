"""Finds every mutant of a C++ source: one small change that a test should notice.

Works on tokens, not on a syntax tree. It relies on the format that `./dev check` keeps: a binary operator has white
space on both sides; the bracket of a template argument list or a declarator's `*` and `&` do not. A change that does
not compile only costs time, since the caller drops it.
"""
import bisect
import re
from dataclasses import dataclass

TOKEN = re.compile(
    r'(?P<skip>\s+|//[^\n]*|/\*.*?\*/|^[ \t]*\#(?:\\\n|[^\n])*)'
    r'|(?P<str>(?:u8|[uUL])?R"(?P<tag>[^(\s]*)\(.*?\)(?P=tag)"|(?:u8|[uUL])?"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\')'
    r"|(?P<num>\.?\d(?:[eEpP][+-]|['\w.])*)"
    r'|(?P<id>[A-Za-z_]\w*)'
    r'|(?P<op>->\*|<=>|<<=|>>=|\.\.\.|::|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|.)',
    re.DOTALL | re.MULTILINE)

OPERATORS = {
    '==': ['!='], '!=': ['=='], '<': ['<=', '>='], '<=': ['<', '>'], '>': ['>=', '<='], '>=': ['>', '<'],
    '&&': ['||'], '||': ['&&'], '+': ['-'], '-': ['+'], '*': ['/'], '/': ['*'], '%': ['*'], '|': ['&'], '&': ['|'],
    '<<': ['>>'], '>>': ['<<'], '+=': ['-='], '-=': ['+='], '|=': ['&='], '&=': ['|=']}
UNARY = {'++': '--', '--': '++', '!': ''}
CLOSING = {'(': ')', '[': ']', '{': '}'}
TYPE_HEADS = {'struct', 'class', 'enum', 'union', 'namespace'}
# A statement that begins with one of these is neither a call nor an assignment.
NOT_REMOVED = {
    'if', 'else', 'for', 'while', 'do', 'switch', 'case', 'default', 'try', 'catch', 'return', 'const', 'constexpr',
    'static', 'auto', 'using', 'typedef', 'extern', 'template', 'public', 'private', 'protected', 'friend', 'void',
    'bool', 'char', 'int', 'unsigned', 'float', 'double', 'static_assert', 'goto', 'constinit'} | TYPE_HEADS
NO_CALL = {'if', 'for', 'while', 'switch', 'return', 'catch', 'sizeof', 'alignas', 'decltype', 'noexcept', 'operator'}
BEFORE_CONDITION = {'=', '(', ',', '{', ';', '[', ':', '?', 'return', '+=', '-=', '|=', '&=', '<<'}
UNREACHABLE = '// unreachable: '


@dataclass(frozen=True)
class Token:
    kind: str
    text: str
    start: int
    end: int


@dataclass(frozen=True)
class Mutant:
    file: str
    line: int
    kind: str
    start: int
    end: int
    replacement: str
    before: str  # the lines that it touches, in one line
    after: str

    def apply(self, text):
        return text[:self.start] + self.replacement + text[self.end:]


def squeezed(text):
    """Code in one line, without trailing comments and with single blanks."""
    return ' '.join(' '.join(re.sub(r'(^|\s)//.*', '', line) for line in text.split('\n')).split())


class Source:
    def __init__(self, file, text):
        self.file = file
        self.text = text
        self.tokens = [Token(m.lastgroup, m.group(m.lastgroup), m.start(), m.end())
                       for m in TOKEN.finditer(text) if m.lastgroup != 'skip']
        self.lines = [0] + [m.end() for m in re.finditer('\n', text)] + [len(text) + 1]
        self.found = {}
        self.match_brackets()
        self.mark_forbidden()

    def is_at(self, i, *texts):
        return 0 <= i < len(self.tokens) and self.tokens[i].text in texts

    def kind_at(self, i):
        return self.tokens[i].kind if 0 <= i < len(self.tokens) else ''

    # ---- Brackets and their contents

    def match_brackets(self):
        """Finds the innermost bracket of each token, the partner of each bracket, and the content of each brace."""
        self.pair, self.inside, self.holds, stack = {}, [], {}, []
        for i, token in enumerate(self.tokens):
            if token.kind == 'op' and token.text in ')]}' and stack:
                opener = stack.pop()
                self.pair[opener], self.pair[i] = i, opener
            self.inside.append(stack[-1] if stack else -1)
            if token.kind == 'op' and token.text in CLOSING:
                if token.text == '{':
                    self.holds[i] = self.content_of_brace(i)
                stack.append(i)
        for opener in stack:
            self.pair[opener] = len(self.tokens) - 1

    def content_of_brace(self, i):
        """'code', 'type' for the body of a type or namespace, or 'init' for a list of values."""
        around = self.inside[i]
        parent = self.holds.get(around, 'type' if around < 0 else 'init')
        if self.is_at(i - 1, ')', 'else', 'do', 'try', 'const', 'noexcept', 'override', 'mutable', ']'):
            return 'code'
        if self.is_at(i - 1, ';', '}', '{', ':') and parent == 'code':
            return 'code'
        if self.kind_at(i - 1) == 'str':
            return 'type'
        j = i - 1
        while j >= 0 and j != around and not self.is_at(j, ';', '{', '}', '=', '(', ','):
            if self.is_at(j, '->'):
                return 'code'
            if self.tokens[j].text in TYPE_HEADS:
                return 'type'
            j -= 1
        return 'init'

    def is_in_code(self, i):
        """Whether the innermost braces around a token are those of a function."""
        at = self.inside[i]
        while at >= 0 and not self.is_at(at, '{'):
            at = self.inside[at]
        while at >= 0 and self.holds[at] == 'init':
            at = self.inside[at]
            while at >= 0 and not self.is_at(at, '{'):
                at = self.inside[at]
        return at >= 0 and self.holds[at] == 'code'

    def mark_forbidden(self):
        """Tokens that no mutant may touch: assertions, attributes, template heads and the sizes of arrays."""
        self.forbidden = set()
        for i, token in enumerate(self.tokens):
            if token.text in ('static_assert', 'assert', 'alignas', '__attribute__') and self.is_at(i + 1, '('):
                self.forbidden.update(range(i, self.pair[i + 1] + 1))
            elif token.text == '[' and self.is_at(i + 1, '['):
                self.forbidden.update(range(i, self.pair[i] + 1))
            elif token.text == 'template' and self.is_at(i + 1, '<'):
                j = i + 1
                while j < len(self.tokens) and not self.is_at(j, '>'):
                    j += 1
                self.forbidden.update(range(i, j + 1))
            elif token.text == '[' and self.declares_array(i):
                self.forbidden.update(range(i, self.pair[i] + 1))
            elif token.text == 'operator':
                self.forbidden.update((i, i + 1))

    def declares_array(self, i):
        if self.is_at(i - 1, ']'):
            return self.pair[i - 1] in self.forbidden
        j = i - 1
        if self.kind_at(j) != 'id':
            return False
        while self.is_at(j - 1, '::') and self.kind_at(j - 2) == 'id':
            j -= 2
        return self.is_at(j - 1, '*', '>') or (
            self.kind_at(j - 1) == 'id' and not self.is_at(j - 1, 'return', 'case', 'delete', 'else', 'throw'))

    # ---- Ranges of tokens

    def next_at(self, i, end, *texts):
        """The first token from i on that is one of texts and outside further brackets; end if there is none."""
        while i < end and not self.is_at(i, *texts):
            i = self.pair[i] + 1 if self.is_at(i, *CLOSING) else i + 1
        return min(i, end)

    def parts(self, first, end, separator=','):
        """The ranges between the separators."""
        found = []
        while first < end:
            stop = self.next_at(first, end, separator)
            found.append((first, stop))
            first = stop + 1
        return found

    def code(self, first, end):
        return self.text[self.tokens[first].start:self.tokens[end - 1].end] if first < end else ''

    def add(self, kind, first, end, replacement):
        """A mutant that replaces the tokens from first to before end."""
        if first >= end or any(i in self.forbidden for i in range(first, end)):
            return
        start, stop = self.tokens[first].start, self.tokens[end - 1].end
        line = bisect.bisect_right(self.lines, start)
        last = bisect.bisect_right(self.lines, stop - 1)
        left, right = self.lines[line - 1], self.lines[last] - 1
        whole = self.text[left:right]
        if UNREACHABLE in whole:
            return
        before = squeezed(whole)
        after = squeezed(self.text[left:start] + replacement + self.text[stop:right])
        if before != after:
            mutant = Mutant(self.file, line, kind, start, stop, replacement, before, after)
            self.found.setdefault((start, stop, replacement), mutant)

    # ---- The kinds of mutants

    def is_binary(self, i):
        token = self.tokens[i]
        return self.text[token.start - 1].isspace() and self.text[token.end:token.end + 1].isspace()

    def find_operators(self):
        for i, token in enumerate(self.tokens):
            if token.kind != 'op':
                continue
            if token.text in OPERATORS and self.is_binary(i):
                for other in OPERATORS[token.text]:
                    self.add('operator', i, i + 1, other)
            elif token.text in UNARY:
                self.add('operator', i, i + 1, UNARY[token.text])

    def find_constants(self):
        for i, token in enumerate(self.tokens):
            if token.text in ('true', 'false'):
                self.add('constant', i, i + 1, 'false' if token.text == 'true' else 'true')
            if token.kind != 'num':
                continue
            m = re.fullmatch(r"(0[xX][\da-fA-F']+|[\d']+)([uUlLzZ]*)", token.text)
            if m:
                value = int(m[1].replace("'", ''), 16 if m[1][:2].lower() == '0x' else 10)
                form = '0x%X' if m[1][:2].lower() == '0x' else '%d'
                for other in (value + 1, value - 1):
                    if other >= 0:
                        self.add('constant', i, i + 1, form % other + m[2])
            elif re.fullmatch(r'[\d.]+[fF]?', token.text):
                suffix = token.text[-1] if token.text[-1] in 'fF' else ''
                self.add('constant', i, i + 1, str(float(token.text.rstrip('fF')) + 1) + suffix)

    def add_conditions(self, first, end, may_force_true):
        """The range is a whole condition."""
        if first >= end or self.is_at(first, 'true', 'false') and end == first + 1:
            return
        declares = self.next_at(first, end, '=') < end
        if declares:
            name = self.code(self.next_at(first, end, '=') - 1, self.next_at(first, end, '='))
            if not may_force_true:  # the condition of a loop cannot contain the declaration
                return
            prefix, condition = self.code(first, end) + '; ', name
        else:
            prefix, condition = '', self.code(first, end)
        simple = self.next_at(first, end, '&&', '||') == end and (
            self.is_at(first, '!') or self.next_at(first, end, '==', '!=') < end)
        if declares or not simple:  # otherwise a mutant of the operator is equivalent
            self.add('condition', first, end, f'{prefix}!({condition})')
        self.add('condition', first, end, prefix + 'false')
        if may_force_true:
            self.add('condition', first, end, prefix + 'true')

    def find_conditions(self):
        for i, token in enumerate(self.tokens):
            if token.text in ('if', 'while') and self.is_at(i + 1, '('):
                ranges = self.parts(i + 2, self.pair[i + 1], ';')
                if ranges:
                    # A loop is not forced true: an endless loop only costs the time limit.
                    self.add_conditions(*ranges[-1], may_force_true=token.text == 'if')
            elif token.text == 'for' and self.is_at(i + 1, '('):
                ranges = self.parts(i + 2, self.pair[i + 1], ';')
                if len(ranges) > 1:
                    self.add_conditions(*ranges[1], may_force_true=False)
            elif token.text == '?':
                first = i
                while first - 1 > self.inside[i] and not self.is_at(first - 1, *BEFORE_CONDITION, '}'):
                    first = self.pair[first - 1] if self.is_at(first - 1, ')', ']') else first - 1
                self.add_conditions(first, i, may_force_true=True)

    def statement_starts(self):
        for i in range(1, len(self.tokens)):
            if self.holds.get(self.inside[i]) != 'code' or self.is_at(i, '{', '}', ';'):
                continue
            if self.is_at(i - 1, ';', '{', '}', 'else', 'do', ':'):
                if self.is_at(i - 1, ':') and self.next_at(i, self.pair[self.inside[i]], ';', '?') == i:
                    continue
                if self.is_at(i - 1, '}') and self.holds.get(self.pair[i - 1]) == 'init':
                    continue
                yield i
            elif self.is_at(i - 1, ')') and self.is_at(self.pair[i - 1] - 1, 'if', 'for', 'while', 'constexpr'):
                if self.is_at(i, '['):  # an attribute
                    i = self.pair[i] + 1
                if not self.is_at(i, '{', ';'):
                    yield i

    def declares(self, i, end):
        """The name that a statement declares and what stands behind it, or None."""
        while i < end and self.is_at(i, 'const'):
            i += 1
        if self.kind_at(i) != 'id':
            return None
        i += 1
        while i < end and (self.is_at(i, '::', '<') and not self.is_binary(i)):
            depth = 0
            while i < end:  # skip a name or an argument list
                depth += self.is_at(i, '<') - self.is_at(i, '>')
                i += 1
                if depth == 0 and not self.is_at(i - 1, '::'):
                    break
        if self.is_at(i, '*', '&', '&&') and self.kind_at(i + 1) == 'id' and not self.is_binary(i):
            i += 1
        return (i, i + 1) if i < end and self.kind_at(i) == 'id' else None

    def find_removals(self):
        for i in self.statement_starts():
            around = self.pair[self.inside[i]]
            end = self.next_at(i, around, ';')
            if end >= around:
                continue
            first = self.tokens[i]
            declared = self.declares(i, end)
            if declared and (first.text == 'const' or first.text not in NOT_REMOVED):
                name, behind = declared
                # A guard: an object that is not used again.
                used = any(t.text == self.tokens[name].text for t in self.tokens[behind:around])
                if not used and (self.is_at(behind, '(') or behind == end):
                    self.add('removed statement', i, end, '')
            elif first.text == 'return' and end == i + 1:
                self.add('removed statement', i, end, '')
            elif first.text in NOT_REMOVED:
                continue
            elif first.kind == 'id' or self.is_at(i, '++', '--', '*', '(', '::'):
                self.add('removed statement', i, end, '')

    def find_results(self):
        for i, token in enumerate(self.tokens):
            if token.text != 'return' or not self.is_in_code(i):
                continue
            end = self.next_at(i + 1, len(self.tokens), ';')
            if self.code(i + 1, end) not in ('', '0', 'false', 'nullptr', '{}', 'true', '1', '*this'):
                self.add('neutral result', i + 1, end, '{}')

    def find_swaps(self):
        for i, token in enumerate(self.tokens):
            if token.text == '{' and self.holds.get(i) == 'init' and self.is_at(i - 1, '='):
                kind = 'swapped rows'
            elif (token.text == '(' and self.kind_at(i - 1) == 'id' and self.tokens[i - 1].text not in NO_CALL
                  and self.is_in_code(i)):
                kind = 'swapped arguments'
            else:
                continue
            ranges = self.parts(i + 1, self.pair[i])
            for one, two in zip(ranges, ranges[1:]):
                first, second = self.code(*one), self.code(*two)
                if first and second and first != second:
                    between = self.text[self.tokens[one[1] - 1].end:self.tokens[two[0]].start]
                    self.add(kind, one[0], two[1], second + between + first)

    def mutants(self):
        self.find_operators()
        self.find_constants()
        self.find_conditions()
        self.find_removals()
        self.find_results()
        self.find_swaps()
        return sorted(self.found.values(), key=lambda m: (m.start, m.end, m.replacement))


def sequence(sources, random):
    """All mutants of {file: text} in a random order in which every line has the same chance.

    The first mutants of all lines come first, in random order, then the second ones. So a table with many numbers per
    row gets no more mutants than the same number of lines of code.
    """
    by_line = {}
    for file in sorted(sources):
        for mutant in Source(file, sources[file]).mutants():
            by_line.setdefault((mutant.file, mutant.line), []).append(mutant)
    ordered = []
    for mutants in by_line.values():
        random.shuffle(mutants)
        ordered += [(rank, random.random(), mutant) for rank, mutant in enumerate(mutants)]
    ordered.sort(key=lambda entry: entry[:2])
    return [mutant for _, _, mutant in ordered]
