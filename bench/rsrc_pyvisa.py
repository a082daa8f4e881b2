#!/usr/bin/python3
"""Times python3-pyvisa's resource-name parser over the bench_rsrc corpus,
for comparison with bench_rsrc: /usr/bin/python3 bench/rsrc_pyvisa.py"""
import pathlib
import time

from pyvisa import rname

corpus = pathlib.Path(__file__).with_name("rsrc_corpus.txt").read_text().splitlines()


def parse_all():
    failed = 0
    for text in corpus:
        try:
            str(rname.parse_resource_name(text))
        except Exception:  # invalid names raise; they are part of the corpus
            failed += 1
    return failed


failed = parse_all()
rounds = 200
start = time.perf_counter()
for _ in range(rounds):
    parse_all()
elapsed = time.perf_counter() - start
print(f"{len(corpus)} strings, {failed} rejected; {elapsed / rounds / len(corpus) * 1e9:.0f} ns per string")
