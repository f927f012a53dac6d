"""Figures: how they are taken, and the table of them."""
import contextlib
import os
import pathlib
import shutil
import statistics
import subprocess
import tempfile
import time

rows = []


def figure(name, unit, ours, than, theirs, aim=None, pick=statistics.median):
    """A row: ours against theirs; aim is the most that the ratio should be. theirs is None if there is no such program."""
    def of(values):
        return {"median": pick(values), "min": min(values), "max": max(values), "runs": len(values)}
    row = {"figure": name, "unit": unit, **of(ours), "than": than, "aim": aim}
    if theirs is not None:
        row["other"] = of(theirs)
        row["ratio"] = row["median"] / row["other"]["median"] if row["other"]["median"] else None
    rows.append(row)

    def text(values):
        return f"{values['median']:.4g} ({values['min']:.4g}–{values['max']:.4g})"
    ratio = f"{row['ratio']:8.2f}" if row.get("ratio") is not None else " " * 8
    missed = " missed" if aim and row.get("ratio", 0) and row["ratio"] > aim else ""
    print(f"{name:36} {unit:4} {text(row):28} {than:26} {text(row['other']) if theirs else 'absent':28} {ratio}"
          f"{f'  ≤ {aim}{missed}' if aim else ''}", flush=True)


def in_turn(runs, warm_up=1, **cases):
    """What each case returns, of so many runs of all of them in turn, after some that warm them up."""
    results = {name: [] for name in cases}
    for run in range(-warm_up, runs):
        for name, case in cases.items():
            result = case()
            if run >= 0:
                results[name].append(result)
    return results


def timed(command, **options):
    """Seconds that passed, and seconds of processor time of the command and its children."""
    begin, before = time.perf_counter(), os.times()
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, **options)
    after = os.times()
    return (time.perf_counter() - begin,
            after.children_user + after.children_system - before.children_user - before.children_system)


def column(values, index):
    return [value[index] for value in values]


@contextlib.contextmanager
def folder(within=None):
    path = pathlib.Path(tempfile.mkdtemp(prefix="orvane-bench-", dir=within))
    try:
        yield path
    finally:
        shutil.rmtree(path, ignore_errors=True)
