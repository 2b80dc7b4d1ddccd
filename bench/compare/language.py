"""The language benchmarks of language.lsp, the same algorithms, for CPython."""
import time


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


def measure(name, work):
    best = None
    for _ in range(5):
        start = time.perf_counter()
        work()
        took = (time.perf_counter() - start) * 1000
        best = took if best is None else min(best, took)
    print(f"{name} {best:.1f}")


measure("fib(25)", run_fib)
measure("list-300k", run_list)
measure("strings-200k", run_strings)
measure("while-1M", run_while)
