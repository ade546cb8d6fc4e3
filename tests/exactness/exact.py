# SPDX-License-Identifier: MIT
"""The arithmetics that the program has, and exact numbers to hold against them.

Single precision and the full arithmetic are made here; a float of Python is a number in double.
Exact numbers are fractions, and a root lies between two of them.
"""
import ctypes
import math
import re
from fractions import Fraction

kWideBits = 64


def single(x):
    """A double rounded to single precision, half to even, with its limits.

    Sums, products, quotients and roots of two singles may be formed in double first: more than
    twice the bits make the second rounding harmless.
    """
    return ctypes.c_float(x).value


def rounded(x, bits):
    """A fraction rounded to so many bits, half to even. No exponent is out of reach."""
    if x == 0:
        return x
    n, d = abs(x.numerator), x.denominator
    exponent = n.bit_length() - d.bit_length() - bits
    n, d = (n, d << exponent) if exponent > 0 else (n << -exponent, d)
    if n >= d << bits:
        d, exponent = d << 1, exponent + 1
    whole, rest = divmod(n, d)
    if 2 * rest > d or (2 * rest == d and whole & 1):
        whole += 1
    result = Fraction(whole << exponent) if exponent >= 0 else Fraction(whole, 1 << -exponent)
    return result if x > 0 else -result


def wide(x):
    return rounded(Fraction(x), kWideBits)


def single_of_wide(x):
    """A fraction stored in single precision, subnormals included."""
    if abs(x) >= Fraction(2) ** -126:
        x = rounded(x, 24)
        return math.copysign(math.inf, x) if abs(x) >= 2**128 else float(x)
    units = x * 2**149
    return math.ldexp(round(units), -149)  # half to even


def root(x, above=False):
    """The root of a fraction, less than 2^-150 of itself away: its square is no more than x, or no
    less."""
    x = Fraction(x)
    if x == 0:
        return x
    scale = max(0, 160 - (x.numerator.bit_length() - x.denominator.bit_length()) // 2)
    n = (x.numerator << 2 * scale) // x.denominator
    least = math.isqrt(n)
    return Fraction(least + (1 if above else 0), 1 << scale)


def wide_root(x):
    """The root as the full arithmetic rounds it; no root lies midway between two wide numbers."""
    return wide(root(x))


def dot(a, b):
    return sum((Fraction(x) * Fraction(y) for x, y in zip(a, b)), Fraction(0))


def read_constants(path):
    """The named numbers of a header: sums and products of numbers and names before them."""
    constants = {}
    with open(path, encoding="utf-8") as header:
        text = header.read()
    for kind, name, value in re.findall(r"constexpr (double|int) (k\w+) =\s*([^;]+);", text):
        value = re.sub(r"0x[0-9a-fA-F.]+p[-+]?\d+", lambda x: repr(float.fromhex(x[0])), value)
        if not re.fullmatch(r"[\w\s.+*/()<e-]+", value):
            raise ValueError(f"{path}: {name} = {value} cannot be read")
        number = eval(value, {"__builtins__": {}}, dict(constants))  # pylint: disable=eval-used
        constants[name] = int(number) if kind == "int" else float(number)
    if "RoundedUpSum" not in text:
        return constants
    growth = re.search(r"RoundedUpSum\(.*?\{ return \(sum \+ term\) \* \(1 \+ (.+?)\); \}", text)
    factor = growth[1].replace("kUnitDouble", repr(constants["kUnitDouble"]))
    constants["RoundedUpSum"] = float(eval(factor, {"__builtins__": {}}))  # pylint: disable=eval-used
    return constants
