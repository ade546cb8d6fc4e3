#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Holds every lemma of docs/exactness.md against exact arithmetic: tests/exactness/lemmas.py [HEADER].

Each takes random and worst-case inputs, does what the program does in single, double and the full
arithmetic, and compares with fractions. The constants are those of lib/rough/rounding.h, or of the
header named, and of narrowing.h in the support beside it. Prints per claim the largest share of its
bound that an error took, and ends with status 1 where one took more than all of it.
"""
import math
import os
import random
import sys
from fractions import Fraction

sys.dont_write_bytecode = True
from exact import dot, read_constants, root, single, single_of_wide, wide, wide_root

kHeader = os.path.join(os.path.dirname(__file__), "../../lib/rough/rounding.h")
kDouble = Fraction(1, 2**53)


class Claims:
    """The largest share of its bound that an error took, claim by claim."""

    def __init__(self):
        self.shares = {}

    def compare(self, claim, error, bound):
        error, bound = Fraction(error), Fraction(bound)
        self.shares.setdefault(claim, 0.0)
        if error <= 0:
            return
        share = float(error / bound) if bound > 0 else math.inf
        # A float's own rounding must not hide that the error is the larger.
        if error > bound:
            share = max(share, math.nextafter(1.0, 2.0))
        self.shares[claim] = max(self.shares[claim], share)

    def report(self):
        failed = False
        for claim, share in self.shares.items():
            failed |= share > 1
            print(f"{'FAILED' if share > 1 else 'holds '} {claim:58} {share:9.3g} of the bound")
        return 1 if failed else 0


def draw_single(r, spread):
    """Either sign, one in eight just above a power of two, sizes over 2^spread."""
    mantissa = 1 + r.randrange(1, 9) * 2.0**-23 if r.randrange(8) == 0 else r.uniform(1, 2)
    return single(r.choice((-1, 1)) * mantissa * 2.0 ** r.randrange(-spread, spread + 1))


def draw_row(r, n, kind):
    """Entries of one size, of thirty orders of magnitude, alternating tiny and large, or next to
    nothing."""
    if kind == "spread":
        return [draw_single(r, 50) for _ in range(n)]
    if kind == "alternating":
        return [draw_single(r, 2) * (1 if p % 2 else 2.0**-30) for p in range(n)]
    if kind == "subnormal":
        return [single(r.uniform(-1, 1) * 2.0**-75) for _ in range(n)]
    if kind == "positive":
        return [abs(draw_single(r, 1)) for _ in range(n)]
    return [draw_single(r, 1) for _ in range(n)]


kKinds = ("alike", "positive", "spread", "alternating", "subnormal")


def lengths_of(*vectors):
    return [root(dot(v, v), above=True) for v in vectors]


# Lemma 1 ------------------------------------------------------------------------------------------


def single_sum(products, chains):
    """One entry after the other to some partial sums in turn, those in order at the end."""
    sums = [0.0] * chains
    for p, product in enumerate(products):
        sums[p % chains] = single(sums[p % chains] + product)
    total = sums[0]
    for s in sums[1:]:
        total = single(total + s)
    return total


def products_hold(k, claims, r):
    def compare(claim, v, c, chains):
        n = len(v)
        rough = single_sum([single(x * y) for x, y in zip(v, c)], chains)
        # Below the rounded product of the lengths: then below the exact one by no less.
        d, length = (root(dot(x, x)) for x in (v, c))
        counted = n + k["kExtraEntries"]
        bound = Fraction(k["kProductError"]) * d * length + Fraction(k["kVanishing"])
        claims.compare(claim, abs(Fraction(rough) - dot(v, c)), counted * bound)

    for _ in range(120):
        kind = r.choice(kKinds)
        v = draw_row(r, r.choice((1, 2, 5, 30, 200)), kind)
        c = v if r.randrange(2) else draw_row(r, len(v), r.choice(kKinds))
        compare("1 products", v, c, r.choice((1, 2, 4)))
    # Each sum is a tie that goes to the even number below.
    for n in (10, 1000, 4000):
        v = [1.0] + [2.0**-12] * n
        compare("1 products, all rounded one way", v, v, 1)
    # Products of 2^-150 are lost, each a tie between nothing and the least number.
    v = [2.0**-75] * 500
    n = len(v) + k["kExtraEntries"]
    claims.compare("1 products that vanish", dot(v, v), n * Fraction(k["kVanishing"]))
    # The second order, for the longest row.
    n, u = k["kMostEntries"], Fraction(k["kUnitSingle"])
    rounded_once = Fraction(k["kProductError"]) / u
    claims.compare("1 the longest row's second order", 1, rounded_once * max(0, 1 - n * u))


# Lemma 2 ------------------------------------------------------------------------------------------


def refined_square(q, v, c, sign):
    """As refinement adds a row's change to a squared length."""
    for x, y in zip(v, c):
        x, y = Fraction(x), Fraction(y)
        q = wide(q + wide(x * wide(x + sign * 2 * y)))
    return q


def seeded_square(q, v, c):
    """As seeding does."""
    for x, y in zip(v, c):
        x, y = Fraction(x), Fraction(y)
        grown = wide(y + x)
        q = wide(q + wide(wide(grown * grown) - wide(y * y)))
    return q


def exact_change(v, c, sign=1):
    return sum((Fraction(x) * (Fraction(x) + sign * 2 * Fraction(y)) for x, y in zip(v, c)),
               Fraction(0))


def full_squares_hold(k, claims, r):
    per_entry = Fraction(k["kWidePerEntry"])

    def compare(claim, v, c, q, most):
        n = len(v) + k["kExtraEntries"]
        for sign in (-1, 1):
            error = abs(refined_square(q, v, c, sign) - q - exact_change(v, c, sign))
            claims.compare(claim, error, n * per_entry * most**2)
        error = abs(seeded_square(q, v, c) - q - exact_change(v, c))
        claims.compare(claim, error, n * per_entry * most**2)

    for _ in range(60):
        v = draw_row(r, r.choice((1, 2, 5, 60)), r.choice(kKinds))
        c = draw_row(r, len(v), r.choice(kKinds)) if r.randrange(3) else [-x for x in v]
        q = Fraction(single_of_wide(dot(c, c)))
        most = root(max(q, dot(c, c))) + root(dot(v, v))
        compare("2 squared lengths", v, c, q, most)
    # One column many times, so that all that is rounded is rounded alike.
    for _ in range(40):
        n = 40
        x, y = draw_single(r, 1) * 2.0**-r.randrange(20, 48), draw_single(r, 1)
        x = single(x)
        v, c = [x] * n, [y] * n
        q = Fraction(single_of_wide(Fraction(y) ** 2))
        most = max(abs(Fraction(y)), root(q)) + n * abs(Fraction(x))
        compare("2 squared lengths, one column many times", v, c, q, most)
        # Among other values, none of which the row touches, the running sum rounds alike too.
        big = q + 2 ** r.randrange(1, 8)
        compare("2 squared lengths, one column many times", v, c, big,
                root(big) + n * abs(Fraction(x)))


# Lemma 3 ------------------------------------------------------------------------------------------


def kept_size(k, x):
    """A row's length or sum of squares as a record keeps it."""
    return single(x * (1 + 2 * k["kUnitSingle"]) + k["kVanishing"])


class Row:
    def __init__(self, k, columns, values):
        self.columns, self.values = columns, values
        self.repeats = len(set(columns)) < len(columns)
        square = sum(v * v for v in values)
        length = sum(abs(v) for v in values) if self.repeats else math.sqrt(square)
        self.square, self.length = kept_size(k, square), kept_size(k, length)


class LengthBound:
    """The class of that name, operation by operation."""

    def __init__(self, k, q):
        self.k, self.excess, self.length = k, 0.0, 0.0
        self.store(q, 0.0)

    def rounding(self, row):
        times = float(len(row.values)) if row.repeats else 1.0
        return self.k["kCompositeRounding"] * times * (self.length + row.length)

    def change(self, row, q):
        rounding, most = self.rounding(row), self.length + row.length
        entries = float(len(row.values)) + self.k["kExtraEntries"]
        self.store(q, entries * self.k["kWidePerEntry"] * (most * most + self.excess) +
                   rounding * (2 * most + rounding) +
                   (row.length * row.length if row.repeats else 0.0))

    def store(self, q, error):
        k = self.k
        term = error + k["kStoredSquare"] * abs(q) + k["kVanishing"]
        self.excess = (self.excess + term) * (1 + k["RoundedUpSum"])
        square = q + self.excess
        self.length = math.sqrt(square) * (1 + k["kSlack"]) if square >= 0 else math.nan


class Composite:
    """A cluster's composite and squared length as moves change them, with the bound."""

    def __init__(self, k, values):
        self.values = list(values)
        self.q = single_of_wide(wide(dot(values, values)))
        self.bound = LengthBound(k, self.q)

    def move(self, row, sign):
        c = [self.values[j] for j in row.columns]
        self.q = single_of_wide(refined_square(Fraction(self.q), row.values, c, sign))
        before = list(self.values)
        for j, v in zip(row.columns, row.values):
            self.values[j] = single(self.values[j] + sign * v)
        folded = [Fraction(0)] * len(self.values)
        for j, v in zip(row.columns, row.values):
            folded[j] += sign * Fraction(v)
        rounding = [Fraction(a) - Fraction(b) - f
                    for a, b, f in zip(self.values, before, folded)]
        self.bound.change(row, self.q)
        return root(dot(rounding, rounding))

    def compare(self, claims, claim):
        excess = Fraction(self.bound.length) ** 2 - Fraction(self.q)
        claims.compare(claim, dot(self.values, self.values) - Fraction(self.q), excess)


def lengths_hold(k, claims, r):
    for _ in range(300):
        values = draw_row(r, r.choice((1, 3)), "alike")
        row = Row(k, list(range(len(values))), values)
        claims.compare("3 a row's sum of squares, kept", dot(values, values), row.square)
        claims.compare("3 a row's length, kept", dot(values, values), Fraction(row.length) ** 2)
    # A square just below the middle between two singles is stored as the one below.
    for j in range(1, 40):
        composite = Composite(k, [1.0, single(2.0**-12 * (1 - 2.0**-20)), j * 2.0**-30])
        composite.compare(claims, "3 a square as stored")
    for kind in ("alike", "spread", "alternating", "positive", "repeats", "cancels"):
        rows = []
        for _ in range(8):
            n = r.randrange(1, 6)
            columns = r.choices(range(3), k=n) if kind == "repeats" else r.sample(range(8), n)
            rows.append(Row(k, columns, draw_row(r, n, kind if kind in kKinds else "alike")))
        composite, inside = Composite(k, [0.0] * 8), set()
        for _ in range(150):
            i = r.randrange(len(rows))
            row, sign = rows[i], -1 if i in inside else 1
            inside ^= {i}
            composite.move(row, sign)
            if math.isnan(composite.bound.length):
                break  # which bounds nothing from then on
            composite.compare(claims, "3 lengths, rows coming and going")
    # All values just above a power of two, all rounded up, and the square down by nearly as much as
    # can be: 47 columns of 1 make a square of 47, to which each row adds 1.47 units.
    row = Row(k, list(range(47)), [single(2.0**-24 * (1 + 2.0**-20))] * 47)
    composite = Composite(k, [1.0] * 47)
    for _ in range(60):
        rounding = composite.move(row, 1)
        bound = Fraction(composite.bound.rounding(row))
        claims.compare("3 what a composite rounds", rounding, bound)
    composite.compare(claims, "3 lengths, all rounded one way")
    # A sum rounded up, over many terms: exact steps, each against the one before.
    total = 0.0
    for step in range(20000):
        term = r.uniform(0, 1) * 2.0 ** -r.randrange(0, 60)
        exact = Fraction(total) + Fraction(term)
        up = (total + term) * (1 + k["RoundedUpSum"])
        claims.compare("3 a sum rounded up", exact, Fraction(up))
        # How much of what is added is needed.
        lost = exact - Fraction(total + term) + 2 * kDouble * exact
        claims.compare("3 what rounding a sum up adds", lost,
                       Fraction(k["RoundedUpSum"]) * exact + kDouble * exact)
        total = up if step % 100 else 0.0


# Lemma 4 ------------------------------------------------------------------------------------------


class Term:
    """One of the six terms: weight times similarity times a power of q, or the two that have no
    similarity."""

    def __init__(self, name, weight, power):
        self.name, self.weight, self.power = name, weight, power

    def exact(self, m, q, s):
        """Two fractions around it."""
        if self.name == "I1":
            return q / m, q / m
        if self.power == "root":
            return root(q), root(q, above=True)
        scale = self.weight(Fraction(m)) * s
        if self.power == "inverse":
            return scale / q, scale / q
        return tuple(sorted((scale / root(q), scale / root(q, above=True))))

    def double(self, m, q, s):
        if self.name == "I1":
            return q / m
        if self.power == "root":
            return math.sqrt(q)
        # The products in the order of lib/criteria/terms.h.
        m = float(m)
        scaled = {"E1": m * s, "G1": s, "G1'": m * m * s, "G3": m * s}[self.name]
        return scaled / (q if self.power == "inverse" else math.sqrt(q))

    def bound(self, m, q, s, change, at):
        """base, by_whole, by_length, by_both as gain_bounds.h forms them."""
        term, after = self.double(m, q, s), float(m) + change
        if self.name == "I1":
            return [q / after - term, 0.0, 1 / after, 0.0]
        if self.power == "root":
            slope = 0.5 / math.sqrt(at)
            return [math.sqrt(at) + slope * (q - at) - term, 0.0, slope, 0.0]
        if self.power == "inverse":
            r = 1 / at
            slope = -r * r
        else:
            r = 1 / math.sqrt(at)
            slope = -0.5 * r / at
        zero, w = r + slope * (q - at), self.weight(after)
        return [term - w * s * zero, -change * w * zero, -w * s * slope, -change * w * slope]


kTerms = [Term("I1", None, None), Term("I2", None, "root"), Term("E1", lambda m: m, "inverse root"),
          Term("G1", lambda m: 1, "inverse"), Term("G1'", lambda m: m * m, "inverse"),
          Term("G3", lambda m: m, "inverse")]


def magnitude(bound, x, g):
    base, by_whole, by_length, by_both = (abs(b) for b in bound)
    return base + by_whole * g + (by_length + by_both * g) * x


def value_at(bound, x, g):
    base, by_whole, by_length, by_both = bound
    return base + by_whole * g + (by_length + by_both * g) * x


def tangents_hold(k, claims, r):
    for trial in range(4000):
        term = kTerms[trial % len(kTerms)]
        change = r.choice((-1, 1))
        m = r.choice((1, 2, 3, 10, 1000, 10**6))
        if change < 0:
            m += 2
        q = abs(draw_single(r, r.choice((1, 60))))
        s = abs(draw_single(r, r.choice((1, 60)))) if term.weight else 0.0
        # The tangent touches at, or somewhere around, what the row makes of the square.
        x = q * r.choice((-0.999, -0.75, -0.5, 0.5, 3.0, r.uniform(-1, 1), 2.0**-r.randrange(40)))
        g = change * s * r.choice((-1.0, -0.5, 0.0, 0.5, 3.0, r.uniform(-1, 1)))
        at = max(q + x, q / 4) if r.randrange(4) else q * r.uniform(0.25, 4)
        bound = term.bound(m, q, s, change, at)
        room = k["kSlack"] * (2 * abs(term.double(m, q, s)) + magnitude(bound, abs(x), abs(g)))
        before = term.exact(m, Fraction(q), Fraction(s))
        after = term.exact(m + change, Fraction(q) + Fraction(x),
                           Fraction(s) + change * Fraction(g))
        gain = before[0] - after[1] if term.weight else after[0] - before[1]
        # The full arithmetic rounds the terms and their sum by no more than so much.
        gain += 8 * Fraction(1, 2**64) * max(abs(b) for b in before)
        shortage = gain - Fraction(value_at(bound, x, g))
        claims.compare("4 tangents in double", shortage, Fraction(room))
        bound[0] += room
        claims.compare("4 tangents with their room", gain - Fraction(value_at(bound, x, g)), 0)


# Lemma 5 ------------------------------------------------------------------------------------------


def whole_products_hold(k, claims, r):
    def compare(claim, v, c):
        rough, full = 0.0, Fraction(0)
        for x, y in zip(v, c):
            rough += x * y
            full = wide(full + Fraction(x) * Fraction(y))
        d, length = kept_size(k, math.sqrt(sum(x * x for x in v))), \
            math.sqrt(sum(y * y for y in c)) * (1 + 2 * k["kUnitSingle"]) + k["kVanishing"]
        summing = (len(v) + k["kExtraEntries"]) * k["kWholePerEntry"] * d * length
        error = k["kStoredWhole"] * abs(rough) + summing + k["kVanishing"]
        claims.compare(claim, abs(Fraction(single(rough)) - full), Fraction(error))
        claims.compare(claim + ", summing alone", abs(Fraction(rough) - full), Fraction(summing))

    for _ in range(100):
        v = draw_row(r, r.choice((1, 2, 20, 200)), r.choice(kKinds))
        c = [-x for x in v[::-1]] if r.randrange(3) == 0 else draw_row(r, len(v), r.choice(kKinds))
        compare("5 d.G", v, c)
    # Ties of the sum in double; of the number as it is stored.
    tiny = single(2.0**-26.5 * (1 - 2.0**-20))
    compare("5 d.G", [1.0] + [tiny] * 2000, [1.0] + [tiny] * 2000)
    compare("5 d.G", [1.0, 2.0**-12], [1.0, single(2.0**-12 * (1 - 2.0**-20))])
    # Both arithmetics' roundings, for the longest row.
    n, u, w = (Fraction(k[x]) for x in ("kMostEntries", "kUnitDouble", "kUnitWide"))
    claims.compare("5 both arithmetics, the longest row", n * u / (1 - n * u) + n * w / (1 - n * w),
                   (n + k["kExtraEntries"]) * Fraction(k["kWholePerEntry"]))


# Lemma 6 ------------------------------------------------------------------------------------------


def combinations_hold(k, claims, r):
    """A sum of weighted gains below -slack: then the full arithmetic refuses. The gains are drawn
    about where their sum vanishes, on either side, and the share is that of the slack at which a
    move still improves the objective."""
    for trial in range(3000):
        a_sum, b_sum = (Fraction(abs(draw_single(r, 20))) for _ in range(2))
        relative = r.choice((1e-6, 1e-3, 0.3))
        b = Fraction(r.uniform(-1, 1) * relative) * b_sum
        off = Fraction(r.choice((-1, 1)) * 2.0 ** -r.randrange(40, 70))
        if trial % 2:
            value = wide(a_sum / b_sum)
            weight = float(value)
            slack = k["kSlack"] * (float(a_sum) + weight * float(b_sum))
            a = -value * b + off * a_sum
            rough = float(a) + weight * float(b)
            better = wide(wide(a_sum + a) / wide(b_sum - b)) > value
        else:
            slack = 4 * k["kSlack"]
            first, second = 0.25 / float(a_sum), 1 / float(b_sum)
            a = 4 * a_sum * (-b / b_sum + off)
            if a <= -a_sum:
                continue
            rough = first * float(a) + second * float(b)
            power = wide_root(wide_root(wide(a_sum + a)))
            better = wide(power * wide(b_sum + b)) > wide(wide_root(wide_root(a_sum)) * b_sum)
        if better:
            claims.compare("6 combinations", -Fraction(rough), Fraction(slack))


# Lemma 7 ------------------------------------------------------------------------------------------


def clock_holds(k, claims, r):
    """Two bounds of a cluster that one row's move lies between, and what any row's bound can have
    grown by."""
    for _ in range(3000):
        term = r.choice(kTerms)
        change = r.choice((-1, 1))
        m, s = r.randrange(3, 50), abs(draw_single(r, 2))
        length, longest, most_g = (abs(draw_single(r, 3)) for _ in range(3))
        moved = longest * r.uniform(0, 1)
        q, q_after = (abs(draw_single(r, 2)) for _ in range(2))
        before = term.bound(m, q, s, change, q)
        after = term.bound(m + r.choice((-1, 1)), q_after, s, change, q_after)
        if r.randrange(2):  # a bound that grows in all of its numbers
            after = [b + abs(a) * 2.0**-10 for a, b in zip(after, before)]
        most_x = longest * (longest + 2 * length) * (1 + k["kSlack"])
        shift = 2 * longest * moved
        difference = [b - a for a, b in zip(before, after)]
        growth = (1 + k["kSlack"]) * (magnitude(difference, most_x + shift, most_g) +
                                      (abs(after[2]) + abs(after[3]) * most_g) * shift)
        for sign_x in (-1, 1):
            for g in (Fraction(most_g), Fraction(-most_g), Fraction(r.uniform(-1, 1) * most_g)):
                x = sign_x * Fraction(most_x)
                for move in (Fraction(shift), -Fraction(shift), Fraction(0)):
                    grown = value_at([Fraction(b) for b in after], x, g) - \
                        value_at([Fraction(b) for b in before], x - move, g)
                    claims.compare("7 what a bound grows by", grown, Fraction(growth))
    # What is remembered, against a clock that rounds up on its way.
    for _ in range(300):
        clock = r.uniform(0, 1) * 2.0 ** r.randrange(-20, 20)
        lacking = r.uniform(0, 1) * 2.0 ** r.randrange(-30, 20)
        until = clock + lacking * (1 - k["kSlack"]) - clock * k["kSlack"]
        claims.compare("7 until when a row is settled", Fraction(until) - Fraction(clock), lacking)
        rounding = 3 * kDouble * (Fraction(clock) + Fraction(lacking))
        claims.compare("7 what the settling rounds", rounding,
                       Fraction(k["kSlack"]) * (Fraction(clock) + Fraction(lacking)))


# Lemma 8 ------------------------------------------------------------------------------------------


def growth_holds(k, claims, r):
    for _ in range(400):
        n = r.choice((1, 2, 3, 20))
        v = draw_row(r, n, r.choice(("alike", "positive", "spread")))
        c = [single(x * r.choice((1, -0.5, 2.0**-20))) for x in v] if r.randrange(2) else \
            draw_row(r, n, "alike")
        row = Row(k, list(range(n)), v)
        q = single_of_wide(wide(dot(c, c)))
        length = LengthBound(k, q).length
        claims.compare("8 the kept sum of squares", Fraction(row.square) - dot(v, v),
                       Fraction(k["kKeptSquare"]) * Fraction(row.square))
        both = length + row.length
        per_entry = 2 * k["kProductError"] * row.length * length + \
            k["kWidePerEntry"] * both * both + k["kVanishing"]
        product = single_sum([single(x * y) for x, y in zip(v, c)], 1)
        x = 2 * product + row.square
        square = q + x
        error = (n + k["kExtraEntries"]) * per_entry + k["kKeptSquare"] * row.square + \
            k["kSlack"] * (q + abs(x)) + k["kVanishing"]
        if not error <= square:
            continue
        middle = math.sqrt(square) - math.sqrt(q)
        room = error / math.sqrt(square) + k["kSlack"] * (math.sqrt(square) + math.sqrt(q))
        joined = seeded_square(Fraction(q), v, c)
        growth = wide(wide_root(joined) - wide_root(Fraction(q)))
        claims.compare("8 growth", abs(growth - Fraction(middle)), Fraction(room))


# Lemma 9 ------------------------------------------------------------------------------------------


def double_squares_hold(k, claims, r):
    def compare(v, c, q, length):
        change = 0.0
        for x, y in zip(v, c):
            change += x * (2 * y + x)
        row_length = kept_size(k, math.sqrt(sum(x * x for x in v)))
        most = length + row_length
        error = k["kDoubleSquare"] * (len(v) + k["kExtraEntries"]) * most * most + k["kVanishing"]
        full = seeded_square(Fraction(q), v, c)
        claims.compare("9 a squared length in double", abs(Fraction(q + change) - full),
                       Fraction(error))
        least, largest = single(q + change - error), single(q + change + error)
        if least == largest:
            claims.compare("9 the number that is stored", abs(Fraction(least) -
                                                                Fraction(single_of_wide(full))), 0)

    for _ in range(100):
        v = draw_row(r, r.choice((1, 2, 20, 100)), r.choice(kKinds))
        c = draw_row(r, len(v), r.choice(kKinds)) if r.randrange(2) else [-x for x in v]
        q = single_of_wide(wide(dot(c, c)))
        compare(v, c, q, LengthBound(k, q).length)
    tiny = single(2.0**-26.5 * (1 - 2.0**-20))
    for n in (10, 1000):
        compare([1.0] + [tiny] * n, [0.0] * (n + 1), 2.0**-24, 2.0**-12)


# Lemma 10 -----------------------------------------------------------------------------------------


def sums_of_squares_hold(k, claims, r):
    def compare(values):
        rough, full = 0.0, Fraction(0)
        for x in values:
            rough += x * x
            full = wide(full + Fraction(x) ** 2)
        error = (len(values) + k["kExtraEntries"]) * k["kSumOfSquares"] * rough
        claims.compare("10 sums of squares", abs(Fraction(rough) - full), Fraction(error))

    for _ in range(80):
        compare(draw_row(r, r.choice((1, 3, 30, 300)), r.choice(kKinds)))
    compare([1.0, 2.0**-12] + [single(2.0**-26.5 * (1 - 2.0**-20))] * 3000)


# Lemma 11 -----------------------------------------------------------------------------------------


def merges_hold(k, claims, r):
    for trial in range(10000):
        term = kTerms[trial % 5]
        m = (r.choice((1, 2, 30, 10**6)), r.choice((1, 7, 2 * 10**9)))
        squares = [abs(draw_single(r, r.choice((0, 1, 30)))) for _ in range(2)]
        if r.randrange(2):  # a sum that rounds by nearly all that it can
            squares = [1.0 + r.randrange(9) * 2.0**-23, single(2.0**-30 * r.uniform(0.9, 1.1))]
        tsim = [draw_single(r, 1) for _ in range(2)]
        product = draw_single(r, 1)
        if r.randrange(2):  # cancels to a part of its summands, as much as is let through
            part = r.choice((1, 0.95)) * k["kMostCancellation"]
            product = single(-0.5 * (squares[0] + squares[1]) * (part - 1) / (part + 1))
        if r.randrange(3) == 0:
            tsim[1] = single(-tsim[0] * r.choice((1, 0.999)))
        summed = squares[0] + squares[1] + 2 * product
        if not sum(squares) + 2 * abs(product) <= k["kMostCancellation"] * summed or summed == 0:
            continue
        exact = Fraction(squares[0]) + Fraction(squares[1]) + 2 * Fraction(product)
        sim = Fraction(tsim[0]) + Fraction(tsim[1])
        whole = term.exact(m[0] + m[1], exact, sim)
        parts = [term.exact(n, Fraction(q), Fraction(s)) for n, q, s in zip(m, squares, tsim)]
        alone = [float(wide(p[0])) for p in parts]
        merged = term.double(m[0] + m[1], summed, tsim[0] + tsim[1])
        rough = merged - (alone[0] + alone[1])
        error = abs(whole[0] - parts[0][0] - parts[1][0] - Fraction(rough))
        # The full arithmetic's own: the square, five operations, three terms and two sums.
        bound = Fraction(k["kMergeError"]) * Fraction(abs(merged) + abs(alone[0]) + abs(alone[1]))
        full = Fraction(40, 2**64) * Fraction(abs(merged) + abs(alone[0]) + abs(alone[1]))
        claims.compare("11 the gain of a merge", error + full, bound)


# Lemma 12 -----------------------------------------------------------------------------------------


def wide_sums_hold(k, claims, r):
    def compare(terms, exact_terms):
        chains, magnitudes, full = [0.0] * 4, [0.0] * 4, Fraction(0)
        for p, (term, exact) in enumerate(zip(terms, exact_terms)):
            chains[p % 4] += term
            magnitudes[p % 4] += abs(term)
            full = wide(full + exact)
        rough = (chains[0] + chains[1]) + (chains[2] + chains[3])
        error = (len(terms) + k["kExtraTerms"]) * k["kRoundingPerTerm"] * sum(magnitudes)
        claims.compare("12 sums that are narrowed", abs(Fraction(rough) - full), Fraction(error))

    for _ in range(80):
        n = r.choice((1, 3, 30, 300))
        v, own, whole = (draw_row(r, n, r.choice(kKinds)) for _ in range(3))
        compare([x * y for x, y in zip(v, own)],
                [Fraction(x) * Fraction(y) for x, y in zip(v, own)])
        compare([(g - c) * x for x, c, g in zip(v, own, whole)],
                [wide(wide(Fraction(g) - Fraction(c)) * Fraction(x))
                 for x, c, g in zip(v, own, whole)])
    lost = 2.0**-53 * (1 - 2.0**-20)
    terms = [term for _ in range(1000) for term in (lost, 0.0, 0.0, 0.0)]
    compare([1.0, 0.0, 0.0, 0.0] + terms, [Fraction(x) for x in [1.0, 0.0, 0.0, 0.0] + terms])


# Lemma 13 -----------------------------------------------------------------------------------------


def narrowed_alike(rough):
    """What NarrowsAlike says of a normal number: its last 29 bits are not those of a middle."""
    units = int(abs(rough) / math.ulp(rough))
    return units % 2**29 != 2**28


def single_sums_hold(_, claims, r):
    for trial in range(20000):
        s = draw_single(r, 1)
        a, b = draw_single(r, r.choice((1, 30))), draw_single(r, 1)
        if trial % 2:  # half the last place of the sum, exactly or next to it
            a = 2.0 ** (math.frexp(s)[1] - 25)
            b = r.choice((1.0, -1.0, 1 + 2.0**-23, single(1 - 2.0**-24), 1 + 2.0**-10))
        rough = s + a * b
        if rough == 0 or not narrowed_alike(rough):
            continue
        full = single_of_wide(wide(Fraction(s) + Fraction(a) * Fraction(b)))
        claims.compare("13 sums in double and wide come to the same", abs(single(rough) - full), 0)


# Lemma 14 -----------------------------------------------------------------------------------------


def estimated(k, term, m, square, square_error, sim, sim_error):
    """The value and error of TermOf in lib/partition/row_moves.h, operation by operation."""
    looseness = square_error / (square - square_error)
    value = term.double(m, square, sim)
    error = (looseness + k["kRoomForQuotient"]) * abs(value)
    if term.weight is not None:
        error += (1 + looseness) * term.double(m, square, 2 * sim_error)
    return value, error


def terms_of_two_hold(k, claims, r):
    for trial in range(12000):
        term, values, errors, sums = kTerms[trial % 6], [], [], [Fraction(0), Fraction(0)]
        for _ in range(2):
            m, square = r.choice((1, 2, 30, 10**6, 2 * 10**9)), r.uniform(1, 2) * 2.0 ** r.randrange(-30, 30)
            sim = r.uniform(-2, 2) * 2.0 ** r.randrange(-30, 30)
            square_error = square * r.choice((0.0, 2.0**-52, 2.0**-40, 2.0**-8, 0.25))
            sim_error = abs(sim) * r.choice((0.0, 2.0**-52, 2.0**-30, 1.0, 1000.0))
            value, error = estimated(k, term, m, square, square_error, sim, sim_error)
            values.append(value)
            errors.append(error)
            ends = [end for q in (-1, 1) for s in (-1, 1) for end in
                    term.exact(m, Fraction(square) + q * Fraction(square_error),
                               Fraction(sim) + s * Fraction(sim_error))]
            # The full arithmetic's own: three operations each, and the sum.
            full = Fraction(4, 2**64) * max(abs(end) for end in ends)
            sums[0] += min(ends) - full
            sums[1] += max(ends) + full
        middle, error = values[0] + values[1], errors[0] + errors[1]
        least, most = Fraction(middle - error), Fraction(middle + error)
        claims.compare("14 the terms of two clusters", max(Fraction(middle) - sums[0], 0),
                       max(Fraction(middle) - least, 0))
        claims.compare("14 the terms of two clusters", max(sums[1] - Fraction(middle), 0),
                       max(most - Fraction(middle), 0))


def main():
    header = sys.argv[1] if len(sys.argv) > 1 else kHeader
    k = read_constants(header)
    k |= read_constants(os.path.join(os.path.dirname(header), "../support/narrowing.h"))
    claims = Claims()
    for seed, lemma in enumerate((products_hold, full_squares_hold, lengths_hold, tangents_hold,
                                  whole_products_hold, combinations_hold, clock_holds, growth_holds,
                                  double_squares_hold, sums_of_squares_hold, merges_hold,
                                  wide_sums_hold, single_sums_hold, terms_of_two_hold)):
        lemma(k, claims, random.Random(seed))
    return claims.report()


if __name__ == "__main__":
    sys.exit(main())
