"""One of the language programs of language.lsp, the same algorithm, twenty times, for CPython."""
import sys


def fib(n):
    return n if n < 2 else fib(n - 1) + fib(n - 2)


def run_fib():
    return fib(25)


def run_list():
    cells = None
    i = 0
    while i < 300000:
        cells = (i, cells)
        i = i + 1
    result = None
    while cells:
        result = (cells[0], result)
        cells = cells[1]
    return result[0]


def run_strings():
    i = 0
    s = ""
    while i < 200000:
        s = "item " + str(i) + " of many"
        i = i + 1
    return len(s)


def run_while():
    i = 0
    total = 0
    while i < 1000000:
        total = total + i
        i = i + 1
    return i


work = {"fib": run_fib, "list": run_list, "strings": run_strings, "while": run_while}[sys.argv[1]]
for _ in range(20):
    work()
