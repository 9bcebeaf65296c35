#!/usr/bin/env python3
"""Compares the gate's instruction and allocation counts with bench/budget.tsv.

  gate.py CGDIR BUDGET [--update]

CGDIR holds the callgrind dumps (three passes each) and allocs.tsv from
keyasn_gate. Fails when a row takes more than 3% more instructions per item than
its budget, allocates more per item, is missing on either side, or when a
scaling pair's per-item instructions differ by more than 10%. --update writes
the measured counts as the new budget (the scaling check still applies).
"""
import sys

from report import dumps

TOLERANCE = 1.03
# Size series whose per-item instructions must stay flat, checked at their two ends.
SCALING = [("W2_scaling_1k/keyasn", "W2_scaling_100k/keyasn"),
           ("unit_tree_depth_10/keyasn", "unit_tree_depth_10000/keyasn")]
FLAT = 1.10
HEADER = "workload\tinstructions_per_item\tallocations_per_item"


def measure(cgdir):
    rows = {}
    with open(f"{cgdir}/allocs.tsv") as f:
        for line in f:
            name, items, allocs = line.rstrip("\n").split("\t")
            rows[name] = {"items": float(items), "allocs": float(allocs)}
    for _, name, total in dumps(cgdir):
        rows[name]["ir"] = total / 3.0 / rows[name]["items"]
    return rows


def load(path):
    budget = {}
    with open(path) as f:
        for line in f:
            if line.startswith("workload") or not line.strip():
                continue
            name, ir, allocs = line.rstrip("\n").split("\t")
            budget[name] = {"ir": float(ir), "allocs": float(allocs)}
    return budget


def main():
    cgdir, path = sys.argv[1], sys.argv[2]
    update = "--update" in sys.argv[3:]
    rows = measure(cgdir)
    failures = []
    if update:
        with open(path, "w") as f:
            print(HEADER, file=f)
            for name, r in rows.items():
                print(f"{name}\t{r['ir']:.1f}\t{r['allocs']:.6g}", file=f)
        print(f"wrote {path}")
    budget = load(path)
    print(f"{'workload':32} {'Ir/item':>10} {'budget':>10} {'ratio':>6} {'allocs':>7} {'budget':>7}")
    for name in sorted(set(rows) | set(budget)):
        r, b = rows.get(name), budget.get(name)
        if not r or not b:
            failures.append(f"{name}: {'not in the budget' if r else 'not measured'}")
            continue
        ratio = r["ir"] / b["ir"]
        print(f"{name:32} {r['ir']:10.1f} {b['ir']:10.1f} {ratio:6.3f} {r['allocs']:7.4g} "
              f"{b['allocs']:7.4g}")
        if ratio > TOLERANCE:
            failures.append(f"{name}: {ratio:.3f}x its instruction budget")
        if r["allocs"] > b["allocs"] + 1e-9:
            failures.append(f"{name}: {r['allocs']:.4g} allocations per item, budget "
                            f"{b['allocs']:.4g}")
    for small, large in SCALING:
        if small in rows and large in rows:
            a, z = rows[small]["ir"], rows[large]["ir"]
            spread = max(a, z) / min(a, z)
            print(f"scaling {small} -> {large}: {a:.1f} -> {z:.1f} Ir/item ({spread:.3f})")
            if spread > FLAT:
                failures.append(f"{small} -> {large}: per-item instructions differ by "
                                f"{(spread - 1) * 100:.1f}% (at most {(FLAT - 1) * 100:.0f}%)")
    for f in failures:
        print(f"FAIL {f}", file=sys.stderr)
    if not failures:
        print("gate passed")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
