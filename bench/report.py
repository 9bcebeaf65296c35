#!/usr/bin/env python3
"""Turns the benchmark's JSON and the callgrind dumps into bench/RESULTS.md.

  report.py callgrind DIR        -> JSON: per operation, instructions per pass and
                                    the functions with the most instructions
  report.py report RESULTS CGDIR -> Markdown on standard output
"""
import glob
import json
import os
import platform
import re
import subprocess
import sys

# Workload -> (keyasn row, peers named by the target, target text). None: the
# fastest peer.
TARGETS = {
    "W1_header": ("keyasn", ["mbedtls"], "<= 1.0x mbedTLS"),
    "W2_split": ("keyasn", ["mbedtls_list"], "<= 1.0x mbedTLS copy into std::list"),
    "W3_tree_walk": ("keyasn_walk", ["mbedtls"], "<= 1.0x mbedTLS walk"),
    "W3_tree_decode": ("keyasn_unit", ["mbedtls_x509"], "<= 1.0x mbedTLS full X.509 parse"),
    "W4_oid_enc": ("keyasn", None, "<= 1.0x fastest peer"),
    "W4_oid_dec": ("keyasn", None, "<= 1.0x fastest peer"),
    "W5_time": ("keyasn", ["openssl"], "<= 1.0x OpenSSL"),
    "W6_keyinfo_enc": ("keyasn", ["openssl"], "<= 1.0x OpenSSL template"),
    "W6_keyinfo_dec": ("keyasn", ["openssl"], "<= 1.0x OpenSSL template"),
    "W7_integer": ("keyasn", ["openssl"], "<= 1.0x OpenSSL (aim: mbedTLS)"),
}
UNITS = {"W3_tree_walk": "µs/cert", "W3_tree_decode": "µs/cert"}
SCALE = {"W3_tree_walk": 1e-3, "W3_tree_decode": 1e-3}
PACKAGES = ["libssl-dev", "libmbedtls-dev", "libtasn1-6-dev", "libbotan-2-dev",
            "libbenchmark-dev", "valgrind", "g++"]


def dumps(directory):
    """Yields (path, operation name, instructions) of each named callgrind dump."""
    for path in sorted(glob.glob(os.path.join(directory, "callgrind.out.*.*"))):
        name, total = None, None
        with open(path, errors="replace") as f:
            for line in f:
                if line.startswith("desc: Trigger: Client Request: "):
                    name = line.split("Client Request: ", 1)[1].strip()
                elif line.startswith(("summary:", "totals:")):
                    total = int(line.split()[1])
                    break
        if name and total is not None:
            yield path, name, total


def callgrind(directory):
    ops = {}
    for path, name, total in dumps(directory):
        top = []
        if "keyasn" in name:
            text = subprocess.run(["callgrind_annotate", "--inclusive=no", "--threshold=100",
                                   path], capture_output=True, text=True).stdout
            started = False
            alloc = 0
            for line in text.splitlines():
                if "file:function" in line:
                    started = True
                    continue
                m = re.match(r"\s*([\d,]+) \(\s*[\d.]+%\)\s+(.*)", line) if started else None
                if not m:
                    if started and top and not line.strip():
                        break
                    continue
                fn = m.group(2)
                if "below main" in fn or "libc_start" in fn or "ld-linux" in fn:
                    continue
                ir = int(m.group(1).replace(",", "")) / 3.0
                if "malloc/" in fn or re.search(r"operator (new|delete)", fn):
                    alloc += ir
                fn = re.sub(r"^(\?\?\?|[^\s:]*\.(c|cc|h|S)):", "", fn, count=1)
                fn = re.sub(r"\s*\[[^\]]*\]$", "", fn)
                if len(top) < 8:
                    top.append([ir, fn])
            ops[name] = {"ir": total / 3.0, "top": top, "alloc": alloc}
            continue
        ops[name] = {"ir": total / 3.0, "top": top}
    json.dump(ops, sys.stdout, indent=1)


def fmt(v, digits=3):
    if v is None:
        return "—"
    if v >= 100:
        return f"{v:,.0f}"
    if v >= 10:
        return f"{v:.1f}"
    return f"{v:.{digits - 1}f}"


def load(results, cgdir):
    with open(os.path.join(results, "bench.json")) as f:
        data = json.load(f)
    rows = {}
    errors = {}
    for b in data["benchmarks"]:
        name = b.get("run_name", b["name"])
        if b.get("error_occurred"):
            errors[name] = b.get("error_message", "error")
            continue
        if b.get("aggregate_name") != "median":
            continue
        scale = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}[b.get("time_unit", "ns")]
        items = b.get("items", 1.0)
        rows[name] = {
            "cpu": b["cpu_time"] * scale / items,
            "real": b["real_time"] * scale / items,
            "items": items,
            "allocs": b.get("allocs_per_item"),
            "mbs": b.get("bytes_per_second"),
        }
    cg = {}
    path = os.path.join(results, "callgrind.json")
    if os.path.exists(path):
        with open(path) as f:
            cg = json.load(f)
    for name, r in rows.items():
        c = cg.get(name)
        r["ir"] = c["ir"] / r["items"] if c else None
        r["top"] = c["top"] if c else []
        r["alloc_ir"] = c.get("alloc", 0) / r["items"] if c else None
    return data["context"], rows, errors


def version(pkg):
    try:
        return subprocess.run(["dpkg-query", "-W", "-f=${Version}", pkg], capture_output=True,
                              text=True).stdout.strip() or "?"
    except OSError:
        return "?"


def cpu_model():
    try:
        with open("/proc/cpuinfo") as f:
            for line in f:
                if line.startswith("model name"):
                    return line.split(":", 1)[1].strip()
    except OSError:
        pass
    return platform.processor() or "?"


def report(results, cgdir):
    ctx, rows, errors = load(results, cgdir)
    workloads = {}
    for name in list(rows) + list(errors):
        w, impl = name.split("/", 1)
        workloads.setdefault(w, []).append(impl)
    # Interleaved runs come in random order: list the workloads as defined.
    def order(w):
        keys = list(TARGETS)
        return (keys.index(w) if w in keys else len(keys), w)
    workloads = {w: workloads[w] for w in sorted(workloads, key=order)}
    out = []
    p = out.append
    p("# keyasn benchmark results")
    p("")
    p("Written by `bench/run` (do not edit by hand; `bench/notes.md` is included below).")
    p("")
    p(f"- Date: {ctx.get('date', '?')}")
    p(f"- Machine: {cpu_model()}, {ctx.get('num_cpus', '?')} cores, "
      f"{platform.system()} {platform.release()}; shared with other work "
      f"(load average at start {', '.join(f'{x:.2f}' for x in ctx.get('load_avg', []))})")
    p(f"- Build: Release (`-O3`), g++ {version('g++')}, keyasn as a shared library; "
      f"peers: OpenSSL {version('libssl-dev')}, mbedTLS {version('libmbedtls-dev')}, "
      f"libtasn1 {version('libtasn1-6-dev')}, Botan {version('libbotan-2-dev')}; "
      f"Google Benchmark {version('libbenchmark-dev')}, valgrind {version('valgrind')}")
    p("- Method: every operation's checksum was verified against the generator's before "
      "timing; one core (`taskset`), 5 repetitions of at least 0.5 s run in a random interleaved "
      "order; the table gives the "
      "median CPU time per item (wall/CPU shows how much the shared machine preempted the "
      "run). Ir/item: callgrind instructions of 3 passes after a warm-up pass, / 3 / items "
      "(noise-free). Allocations: global `operator new` calls per item in the keyasn rows.")
    if errors:
        p("")
        p("Not timed (checksum mismatch or failure):")
        for name, msg in sorted(errors.items()):
            p(f"- `{name}`: {msg}")
    p("")
    p("## Targets")
    p("")
    p("| workload | keyasn ns/item | best peer | keyasn / best peer | target | keyasn / target peer "
      "| met | limit ns/item | keyasn / limit | Ir keyasn / target peer | allocs/item |")
    p("|---|---|---|---|---|---|---|---|---|---|---|")
    unmet = []
    for w, (krow, peers, text) in TARGETS.items():
        k = rows.get(f"{w}/{krow}")
        if not k:
            p(f"| {w} | not run | | | {text} | | | | | | |")
            continue
        others = {i: rows[f"{w}/{i}"] for i in workloads.get(w, [])
                  if f"{w}/{i}" in rows and i != "limit" and not i.startswith("keyasn")}
        best = min(others.items(), key=lambda kv: kv[1]["cpu"]) if others else None
        named = {i: others[i] for i in (peers or []) if i in others} or (dict([best]) if best else {})
        tgt = min(named.items(), key=lambda kv: kv[1]["cpu"]) if named else None
        lim = rows.get(f"{w}/limit")
        ratio = k["cpu"] / tgt[1]["cpu"] if tgt else None
        met = ratio is not None and ratio <= 1.0
        if not met:
            unmet.append((w, krow, tgt))
        ir = (k["ir"] / tgt[1]["ir"]) if tgt and k["ir"] and tgt[1]["ir"] else None
        sc = SCALE.get(w, 1.0)
        p(f"| {w} | {fmt(k['cpu'] * sc)} | {best[0] if best else '—'} {fmt(best[1]['cpu'] * sc) if best else ''} "
          f"| {fmt(k['cpu'] / best[1]['cpu']) if best else '—'} | {text} "
          f"| {fmt(ratio)} ({tgt[0] if tgt else '—'}) | {'yes' if met else '**no**'} "
          f"| {fmt(lim['cpu'] * sc) if lim else '—'} | {fmt(k['cpu'] / lim['cpu']) if lim else '—'} "
          f"| {fmt(ir)} | {fmt(k['allocs'])} |")
    p("")
    p("Times are ns per item except W3 (µs per certificate). W2's limit copies the whole "
      "contents in one allocation, so its ratio shows the cost of the owned list itself.")
    p("")
    p("## Every workload")
    for w in workloads:
        if w.startswith(("W2_scaling", "unit_tree")):
            continue
        unit = UNITS.get(w, "ns/item")
        sc = SCALE.get(w, 1.0)
        p("")
        p(f"### {w}")
        p("")
        p(f"| implementation | CPU {unit} | wall/CPU | MB/s | Ir/item | allocs/item |")
        p("|---|---|---|---|---|---|")
        impls = sorted(workloads[w], key=lambda i: rows[f"{w}/{i}"]["cpu"] if f"{w}/{i}" in rows else 1e99)
        for i in impls:
            r = rows.get(f"{w}/{i}")
            if not r:
                p(f"| {i} | {errors.get(f'{w}/{i}', 'not run')} | | | | |")
                continue
            mbs = fmt(r["mbs"] / 1e6) if r.get("mbs") else "—"
            p(f"| {i} | {fmt(r['cpu'] * sc)} | {r['real'] / r['cpu']:.2f} | {mbs} | {fmt(r['ir'])} "
              f"| {fmt(r['allocs']) if i.startswith('keyasn') else '—'} |")
    p("")
    p("## Scaling")
    p("")
    p("Per-item cost as the input grows; flat means the largest / smallest per-item CPU time "
      "stays within 1.2.")
    for prefix, label, sizes in (("W2_scaling_", "W2 split (items)", ["1k", "10k", "100k"]),
                                 ("unit_tree_depth_", "CASNTUnit read + write (nesting depth)",
                                  ["10", "100", "1000", "10000"])):
        impls = sorted({n.split("/", 1)[1] for n in rows if n.startswith(prefix)})
        if not impls:
            continue
        p("")
        p(f"| {label} | " + " | ".join(sizes) + " | largest / smallest | Ir/item | flat |")
        p("|---|" + "---|" * (len(sizes) + 3))
        for i in impls:
            vals = [rows.get(f"{prefix}{s}/{i}") for s in sizes]
            cpu = [v["cpu"] if v else None for v in vals]
            irs = [v["ir"] for v in vals if v and v["ir"]]
            got = [c for c in cpu if c]
            spread = max(got) / min(got) if got else None
            irtxt = " / ".join(fmt(x) for x in irs) if irs else "—"
            p(f"| {i} ns/item | " + " | ".join(fmt(c) for c in cpu) +
              f" | {fmt(spread)} | {irtxt} | {'yes' if spread and spread <= 1.2 else '**no**'} |")
    notes = os.path.join(os.path.dirname(os.path.abspath(__file__)), "notes.md")
    if os.path.exists(notes):
        p("")
        with open(notes) as f:
            p(f.read().rstrip())
    if unmet:
        p("")
        p("## Profiles of the keyasn rows that miss their target")
        p("")
        p("From callgrind (`--inclusive=no`: each function's own instructions).")
        for w, krow, tgt in unmet:
            k = rows[f"{w}/{krow}"]
            p("")
            head = (f"`{w}/{krow}`: {fmt(k['cpu'])} ns/item against {tgt[0] if tgt else '—'} "
                    f"{fmt(tgt[1]['cpu']) if tgt else ''}; {fmt(k['allocs'])} allocations per item; ")
            if k["ir"] is None or k["alloc_ir"] is None:
                # BENCH_SKIP_CALLGRIND=1: timed only, nothing to profile.
                p(head + "instructions not counted in this run (`BENCH_SKIP_CALLGRIND=1`)")
                continue
            p(head +
              f"{fmt(k['ir'])} instructions per item, of which {fmt(k['alloc_ir'])} "
              f"({100 * k['alloc_ir'] / k['ir']:.0f} %) in the allocator (`operator new`/"
              f"`delete`, `malloc`, `free`); {tgt[0] if tgt else ''} needs "
              f"{fmt(tgt[1]['ir']) if tgt else '—'} instructions per item in all")
            p("")
            p(f"Top functions by self instructions per pass ({fmt(k['items'])} items):")
            p("")
            p("| Ir/pass | function |")
            p("|---|---|")
            for ir, fn in k["top"]:
                p(f"| {ir:,.0f} | `{fn}` |")
    print("\n".join(out))


if __name__ == "__main__":
    if sys.argv[1] == "callgrind":
        callgrind(sys.argv[2])
    else:
        report(sys.argv[2], sys.argv[3])
