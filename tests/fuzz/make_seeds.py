#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
#
# Adds the first inputs to each corpus: what a person would try first. The fuzzers made the others
# from them.
#   tests/fuzz/make_seeds.py FOLDER
import gzip
import pathlib
import random
import struct
import sys

from corpus import add_inputs

MATRICES = {  # the first byte: bit 0 dense
    "sparse": b"\0004 5 8\n1 1 2 .5\n2 3 3 1\n4 2 5 1e-3\n4 1 1 -2\n",
    "dense": b"\0013 2\n1 2\n-3.5 4e2\n0 .25\n",
    "no-entries": b"\0002 2 0\n\n\n",
    "too-many-entries": b"\0002 2 1\n1 1 2 2\n1 1\n",
    "missing-value": b"\0002 2 3\n1 1\n1 1 2\n",
    "column-too-large": b"\0001 2 1\n3 1\n",
    "column-zero": b"\0002 2 2\n0 1\n-5 1\n",
    "rows-missing": b"\0013 1\n1\n2\n",
    "header-too-large": b"\00099999999999 1 1\n1 1\n",
    "header-words": b"\000rows columns\n",
    "negative-header": b"\000-1 -1 -1\n",
    "odd-values": b"\0011 7\nnan -inf 0x1p-3 1e400 1,5 --1 +.5\n",
    "carriage-returns": b"\0002 2 2\r\n1 1\r\n2 1\r\n",
    "nul": b"\0002 2 2\n1 1\0 2 1\n2 1\n",
    "line-as-long-as-the-buffer": b"\0011 2\n\xff \xaa\xa91 2 \n",
    "word-across-the-buffer": b"\0011 1\n\xff1\xaa\xaa11\n",
    "empty": b"\000",
    "few-blocks": b"\0062 2 2\n1 1\n2 1\n",
}
LABELS = {  # rows, columns, blocks, then three files
    "none": b"\3\3\0\0\0\0",
    "all": b"\3\2\0\2c one\nc two\n\xfe\2r1\nr2 \nr3\t\n\xfe\2a\nb\na\n",
    "too-few": b"\3\2\0\2c one\n\xfe\2r1\n\xfe\0",
    "missing": b"\3\2\0\1\1\1",
    "long": b"\2\1\0\0\0\2\xffx\xaa\xaaxx\nxx\n",
    "few-blocks": b"\3\2\4\2c one\nc two\n\xfe\2r1\nr2\nr3\n\xfe\2a\nb\na\n",
}
MTX = b"%%MatrixMarket matrix "
IMPORTS = {  # format, empty rows left out, options, the input
    "mtx": b"\0\0\0" + MTX + b"coordinate real general\n% note\n3 4 3\n1 1 .5\n3 4 -2\n3 4 1e3\n",
    "mtx-pattern": b"\0\1\0" + MTX + b"coordinate pattern symmetric\n3 3 2\n2 1\n3 3\n",
    "mtx-array": b"\0\0\0" + MTX + b"array integer general\n2 2\n1\n0\n3\n4\n",
    "mtx-skew": b"\0\0\1" + MTX + b"array real skew-symmetric\n3 3\n1\n2\n3\n",
    "mtx-short": b"\0\0\0" + MTX + b"coordinate real general\n3 4 3\n1 1 .5\n",
    "svmlight": b"\1\0\0+1 qid:3 1:.5 7:2 # note\n-1 2:1e-3\n\nx 3:1\n",
    "svmlight-zero-based": b"\1\1\1" + b"1 0:1 4:2\n2\n",
    "svmlight-twice": b"\1\0\0" + b"1 2:1 2:2\n",
    "csv": b"\2\0\3class,label,a,\"b, c\"\nx,one,1,2.5\ny,\"two \"\"2\"\"\",0,-3\n",
    "csv-no-header": b"\2\1\x14" + b"1;2;3\r\n4;5;6\r\n",
    "csv-texts": b"\2\0\x0b" + b"class,label,text\nx,one,the sea and the sea\n"
                 + b"y,two,\"sea,\nland\"\n",
    "csv-words": b"\2\0\0" + b"a,b\n1,two\n",
    "lines": b"\3\0\0sea and land\nland and sky\n\nsky\n",
    "lines-classes": b"\3\1\3x\tone\tsea and land\ny\ttwo\tland and sky\n",
    "lines-script": "\3\0\0\u00c4rger \u00e4rger\n\u03a3\u03ac\u03c3 \u03c3\u03ac\u03c2\n".encode()
                    + b"\xc3\x28\n",
    "byte-order-mark": b"\3\0\0\xef\xbb\xbfsea sea\nsea\n",
    "long-line": b"\3\0\0\xffa\xaa\xaa sea\nsea\n",
}


def npy(kind: str, shape: str, data: bytes) -> bytes:
    """An array as NumPy saves it."""
    header = f"{{'descr': '{kind}', 'fortran_order': False, 'shape': ({shape}), }}\n".encode()
    return b"\x93NUMPY\1\0" + struct.pack("<H", len(header)) + header + data


def archive(sparse_format: bytes) -> bytes:
    """The arrays of a sparse matrix of two rows and three columns, as the target takes them."""
    arrays = [npy("|S3", "", sparse_format), npy("<i8", "2,", struct.pack("<2q", 2, 3)),
              npy("<i4", "3,", struct.pack("<3i", 0, 2, 3)),
              npy("<i4", "3,", struct.pack("<3i", 0, 2, 1)),
              npy("<f4", "3,", struct.pack("<3f", 1, 2, 3)),
              npy("<i4", "3,", struct.pack("<3i", 0, 0, 1)),
              npy("<i4", "3,", struct.pack("<3i", 0, 2, 1))]
    return b"".join(bytes([number]) + array + b"\xfe" for number, array in enumerate(arrays))


# The kind of input, options, the input.
TABLE = npy("<f8", "2, 2", struct.pack("<4d", 1, 2.5, float("nan"), 3))
ARRAYS = {
    "array": b"\0\2" + TABLE,
    "array-standardized": b"\0\x61" + npy(">i2", "2, 2", b"\0\1\0\2\0\3\0\5"),
    "array-of-halves": b"\0\0" + npy("<f2", "1, 2", b"\0\x3c\0\xc0"),
    "array-cut": b"\0\0" + TABLE[:-1],
    "rows": b"\1\0" + archive(b"csr"),
    "columns": b"\1\0" + archive(b"csc"),
    "entries": b"\1\0" + archive(b"coo"),
    "one-array": b"\1\2\7" + TABLE + b"\xfe",
    "no-archive": b"\2\0PK\5\6" + bytes(18),
    "packed-lines": b"\3\x08" + gzip.compress(b"sea and land\nland and sky\n", mtime=0),
    "latin1-lines": b"\3\x12" + b"caf\xe9 noir\ncaf\xe9 noir\n",
    "wide-lines": b"\3\x13" + "sea land\nsea land\n".encode("utf-16"),
}
FILES = (b"4 3 6\n1 1 2 1\n1 2 2 1\n3 1\n3 4\n\xfe0 0.5 -0.5\n0 1 nan\n1 0 0\n1 0 0\n\xfe"
         b"4 0.5\n4 0.5\n5 0.1\n5 0.2\n6 0.9\n6 0.8\n-1 0.1\n\xfe"
         b"r 1\n</script>\n'q'\n\"q\"\n\xfea\nb&\n<c>\n\xfex\nx\ny\n\xc3\n\xfe")
CLUSTER_TREE = FILES.split(b"\xfe")
CLUSTER_TREE[2] = b"2 0.5\n2 0.25\n-1 0.1\n"
EXPORTS = {  # format, options, the files
    **{name: bytes([number, 63]) + FILES
       for number, name in enumerate(["tsv", "json", "newick", "linkage", "dot", "page"])},
    "page-no-options": b"\5\0" + FILES,
    "page-cluster-tree": b"\5\x4f" + b"\xfe".join(CLUSTER_TREE),
    "newick-numbers": b"\2\0" + FILES,
    "dot-similarity": b"\4\x08" + b"\xfe".join(CLUSTER_TREE),
    "page-dropped-rows": b"\5\x0b" + FILES.replace(b"\n1 0 0\n1 0 0\n", b"\n-1 0 0\n1 0 0\n"),
    "short-clustering": b"\0\0" + FILES.replace(b"0 0.5 -0.5\n", b""),
    "third-child": b"\3\0" + FILES.replace(b"\n5 0.1\n", b"\n4 0.1\n"),
}
COMMAND_LINES = [
    "m.mat 10", "-help", "", "m.mat", "a b c", "-crfun=3 -rb m 4", "m -sim 2 5 -zscores",
    "-showtree m 3", "-showtree=7 -writetree=t m 3", "-plotformat=%s m 2" % ("x" * 300),
    "-plot=x m 2", "-nosuch m 2", "-- -rb 2", "--seed=-5 m 2x", "-ntrials", "-rb=1 m 2",
    "-clab=c -rlab r -rclass=k -denseinput -fulltree m 99999999999",
]
NUMBERS = ["1", "-0", "0.1", "1e400", "1e-46", "nan", "-nan(7)", "infinity", "0x1.8p-3", "1e+",
           "16777217", "3.4028235677973366e+38", "7.0064923216240854e-46", "123456789012345678901",
           "9007199254740993", "40000", "40001", "-9223372036854775809", "1,5", "\v1", "+", "."]
# The options in the order of the program's table, with what is drawn for their values.
NUMBER, FRACTION, TEXT, FORMAT, FLAG, OPTIONAL_NUMBER = range(6)
OPTIONS = {
    "crfun": NUMBER, "rowmodel": NUMBER, "colmodel": NUMBER, "prune": FRACTION, "ntrials": NUMBER,
    "niter": NUMBER, "seed": NUMBER, "dbglvl": NUMBER, "clabelfile": TEXT, "rlabelfile": TEXT,
    "rclassfile": TEXT, "direct": FLAG, "rb": FLAG, "refine": FLAG, "output": TEXT,
    "nooutput": FLAG, "showfeatures": FLAG, "nfeatures": NUMBER, "showtree": OPTIONAL_NUMBER,
    "labeltree": FLAG, "writetree": TEXT, "zscores": FLAG, "fulltree": FLAG, "sim": NUMBER,
    "denseinput": FLAG, "plotmatrix": TEXT, "clustercolumns": FLAG, "plotformat": FORMAT,
    "plotclusters": TEXT, "zeroblack": FLAG, "noreorder": FLAG, "help": FLAG,
}
RUNS = [  # dense, clusters, options
    (0, 3, "showfeatures showtree rclassfile"),
    (0, 3, "showtree=3 labeltree clabelfile rlabelfile"),
    (0, 3, "fulltree writetree rclassfile"),
    (0, 2, "zscores direct refine dbglvl=7"),
    (0, 4, "sim=2 crfun=1 showtree"),
    (0, 4, "rowmodel=2 colmodel=1 crfun=3 prune=10"),
    (0, 4, "rowmodel=3 crfun=4 niter=1 ntrials=1"),
    (0, 4, "rowmodel=4 crfun=5 seed=9"),
    (0, 4, "crfun=6 showtree writetree noreorder"),
    (0, 4, "crfun=7 fulltree showtree=7"),
    (0, 4, "crfun=8 direct"),
    (0, 4, "crfun=9 rb"),
    (0, 3, "plotmatrix plotformat=0 clabelfile"),
    (0, 3, "plotmatrix plotformat=3 fulltree clustercolumns rclassfile"),
    (0, 3, "plotclusters plotformat=6 clustercolumns showfeatures nfeatures=3"),
    (1, 3, "plotclusters plotformat=1 zeroblack"),
    (1, 3, "plotmatrix plotformat=4 zeroblack fulltree noreorder"),
    (1, 3, "showfeatures showtree labeltree nfeatures=2 sim=2"),
    (0, 0, "rclassfile showtree"),
    (0, 3, "help"),
]
BYTES = {"library": 14, "program": 24, "plots": 24, "arithmetic": 8}  # random ones, by the first byte


def program(dense: int, clusters: int, words: str) -> bytes:
    """A run on 6 rows and 5 columns that hold two blocks and some odd cells."""
    options = words.split()
    data = [dense + 2 * len(options), 0, clusters]
    for option in options:
        name, _, value = option.partition("=")
        kind = OPTIONS[name]
        data.append(list(OPTIONS).index(name))
        if kind == OPTIONAL_NUMBER:
            data.append(0 if value else 1)
        if kind in (NUMBER, FRACTION, FORMAT) or (kind == OPTIONAL_NUMBER and value):
            data.append(int(value))
        if kind == TEXT:
            data.append(0)
    rows = ["11000", "12010", "21000", "00122", "00211", "01021"]
    cells = [{"0": 0, "1": 1, "2": 5}[cell] for row in rows for cell in row]
    labels = b"a\nb\nc\nd\ne\n\xfer1\nr2\nr3\nr4\nr5\nr6\n\xfex\nx\ny\ny\nx\nz\n\xfe"
    return bytes(data + [6, 5] + cells) + labels


def random_inputs() -> dict[str, list[bytes]]:
    dice = random.Random(1)
    return {target: [bytes([first] + [dice.randrange(0xe0) for _ in range(250)])
                     for first in range(count)]
            for target, count in BYTES.items()}


def pairs_of_numbers() -> list[bytes]:
    dice = random.Random(2)
    return [dice.randbytes(32) for _ in range(24)]


def seeds() -> dict[str, list[bytes]]:
    drawn = random_inputs()
    return {
        "matrix": [*MATRICES.values()],
        "labels": [*LABELS.values()],
        "import": [*IMPORTS.values()],
        "arrays": [*ARRAYS.values()],
        "export": [*EXPORTS.values()],
        "command_line": [line.replace(" ", "\n").encode() for line in COMMAND_LINES],
        "numbers": [word.encode() for word in NUMBERS],
        "library": drawn["library"],
        "program": [program(*run) for run in RUNS] + drawn["program"],
        "plots": drawn["plots"],
        "wide": pairs_of_numbers(),
    }


def main() -> None:
    for target, inputs in seeds().items():
        add_inputs(pathlib.Path(sys.argv[1], f"{target}.txt"), inputs)


if __name__ == "__main__":
    main()
