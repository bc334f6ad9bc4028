#!/usr/bin/env python3
"""Measures the gesture catalogue on real recordings and prints the
per-gesture tables of the README, one per dataset: by default the
leave-one-subject-out figures of `pelmora tune --loso only` (each subject
scored by the catalogue refitted on the other subjects), with --in-sample
the figures of `pelmora evaluate` for the catalogue as it is.

The datasets are read from ../shared/data (read-only) and unpacked or
imported into a cache folder, never into the repository:
  PRECOG    punches and kicks in scripted fights, per-frame label runs
  MSRC-12   12 gestures, ~10 repetitions a recording, action points
  UTD-MHAD  27 actions, one performance per recording
Each dataset's labels map onto the catalogue through examples/labels/*.map.
The tables give the figures pooled over subjects, the lowest F1 of any one
subject and, with --baseline, the in-sample F1 of the catalogue at an earlier
revision.
"""
import argparse
import csv
import glob
import json
import os
import subprocess
import sys
import tarfile
import tempfile
import time

# name, folder in the cache, label form, matching window (ms before:after)
DATASETS = [
    ("PRECOG", "precog", "runs", "333"),      # hand-set labels: edges approximate
    ("MSRC-12", "msrc12", "points", "1500:1000"),  # action points come late and jitter
    ("UTD-MHAD", "utd-mhad", "file", "500"),  # each recording spans its move
]


def missing_data(data):
    """What of the three datasets the data folder lacks, as one line, or None."""
    wanted = ["precog/Seq*_*.csv", "msrc12/msrc12.tar.xz", "utd-mhad/utd-mhad.tar.xz"]
    absent = [pattern for pattern in wanted if not glob.glob(os.path.join(data, pattern))]
    if not absent:
        return None
    return f"{data}: lacks {', '.join(absent)} (--data names the folder holding the three datasets)"


def unpack(data, cache):
    """The datasets as native recordings in the cache, each with a manifest."""
    os.makedirs(cache, exist_ok=True)
    for name, column in (("msrc12", "gesture"), ("utd-mhad", "action")):
        folder = os.path.join(cache, name)
        if not os.path.isfile(os.path.join(folder, "sequences.tsv")):
            with tarfile.open(os.path.join(data, name, name + ".tar.xz")) as archive:
                archive.extractall(cache, **({"filter": "data"} if hasattr(tarfile, "data_filter") else {}))
        with open(os.path.join(folder, "sequences.tsv"), newline="") as source:
            rows = [(r["file"], r["subject"], r[column]) for r in csv.DictReader(source, delimiter="\t")]
        write_manifest(os.path.join(cache, name + ".tsv"), rows)


def import_precog(pelmora, data, cache):
    folder = os.path.join(cache, "precog")
    os.makedirs(folder, exist_ok=True)
    rows = []
    for source in sorted(glob.glob(os.path.join(data, "precog", "Seq*_*.csv"))):
        name = os.path.basename(source)
        native = os.path.join(folder, name)
        if not os.path.isfile(native):
            subprocess.run([pelmora, "import", "precog", source, native], check=True, capture_output=True)
        rows.append((name, "s" + name[:-4].split("_")[1], ""))
    write_manifest(os.path.join(cache, "precog.tsv"), rows)


def write_manifest(path, rows):
    with open(path, "w") as out:
        out.write("file\tsubject\tlabel\n")
        out.writelines(f"{f}\t{s}\t{l}\n" for f, s, l in rows)


def checkout(root, revision, folder):
    """The catalogue and label maps as they were at a git revision, written into folder."""
    for path in ["examples/gestures/catalogue.xml"] + [f"examples/labels/{name}.map" for _, name, _, _ in DATASETS]:
        content = subprocess.run(["git", "-C", root, "show", f"{revision}:{path}"], check=True, stdout=subprocess.PIPE).stdout
        with open(os.path.join(folder, os.path.basename(path)), "wb") as out:
            out.write(content)
    return os.path.join(folder, "catalogue.xml"), folder


def data_options(labels, cache, folder, form, window):
    return [os.path.join(cache, folder), "--map", os.path.join(labels, folder + ".map"), "--manifest",
            os.path.join(cache, folder + ".tsv"), "--labels", form, "--window", window, "--format", "json"]


def evaluate(pelmora, catalogue, labels, cache, folder, form, window):
    command = [pelmora, "evaluate", catalogue] + data_options(labels, cache, folder, form, window)
    return json.loads(subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout)


def mapped_gestures(path):
    """The gestures a label map names, in the order it first names them."""
    names = []
    with open(path) as lines:
        for line in lines:
            fields = line.split("#")[0].split()
            for name in fields[1].split("|") if len(fields) >= 2 else []:
                if name not in ("none", "-") and name not in names:
                    names.append(name)
    return names


def last_rows(rows):
    # tune prints a row each time a gesture of it is fitted; the last holds them all
    return list({row["gesture"]: row for row in rows}.values())


# Right-hand gestures whose left twins the catalogue builds as mirror images.
# A refit keeps each pair mirrored (`tune --mirror`), as the catalogue does;
# it also scores a row naming both, such as a kick with either foot, with
# both fitted on the same subjects.
MIRRORED = {"RightPunch": "LeftPunch", "FrontRightKick": "FrontLeftKick", "SideRightKick": "SideLeftKick"}


def left_out(pelmora, catalogue, labels, cache, folder, form, window, passes):
    gestures = mapped_gestures(os.path.join(labels, folder + ".map"))
    mirrored = [name for name in gestures if MIRRORED.get(name) in gestures]
    single = [name for name in gestures if name not in mirrored and name not in [MIRRORED[m] for m in mirrored]]
    result = {"gestures": [], "subjects": {}}
    for names, extra in ((mirrored, ["--mirror"]), (single, [])):
        if not names:
            continue
        command = [pelmora, "tune", catalogue] + data_options(labels, cache, folder, form, window) + [
            "--gestures", ",".join(names), "--loso", "only", "--passes", str(passes)] + extra
        part = json.loads(subprocess.run(command, check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                                         text=True).stdout)
        result["recordings"] = part["recordings"]
        result["gestures"] += part["gestures"]
        for subject, rows in part["subjects"].items():
            result["subjects"].setdefault(subject, []).extend(rows)
    in_map_order = lambda row: gestures.index(row["gesture"].split("|")[0])
    result["gestures"] = sorted(last_rows(result["gestures"]), key=in_map_order)
    result["subjects"] = {subject: last_rows(rows) for subject, rows in result["subjects"].items()}
    return result


def cell(value, digits=2):
    return "-" if value is None else f"{value:.{digits}f}"


def table(name, result, baseline=None):
    worst = {}
    for rows in result["subjects"].values():
        for row in rows:
            if row["performances"]:
                worst[row["gesture"]] = min(worst.get(row["gesture"], 1.0), row["f1"])
    before = {row["gesture"]: row["f1"] for row in baseline["gestures"]} if baseline else None
    lines = [f"| {name} | performances | precision | recall | F1 | lowest subject F1 | latency median, p90 (ms) |"
             + (" F1 before |" if before else ""),
             "|---|---:|---:|---:|---:|---:|---:|" + ("---:|" if before else "")]
    others = []
    for row in result["gestures"]:
        if not row["performances"]:
            others.append(f"{row['gesture']} {row['events']}")
            continue
        latency = row["latency_ms"]
        lines.append(f"| {row['gesture'].replace('|', ' or ')} | {row['performances']} | {cell(row['precision'])} | {cell(row['recall'])} "
                     f"| {cell(row['f1'])} | {cell(worst[row['gesture']])} "
                     f"| {cell(latency['median'], 0)}, {cell(latency['p90'], 0)} |"
                     + (f" {cell(before.get(row['gesture']))} |" if before else ""))
    lines.append("")
    was = f" (before: {cell(baseline['macro_f1'])})" if baseline else ""
    scored = [row["f1"] for row in result["gestures"] if row["performances"]]
    lines.append(f"Macro F1 {cell(sum(scored) / len(scored))}{was} over {result['recordings']} recordings."
                 + (f" Other gestures' events (all false): {', '.join(others)}." if others else ""))
    return "\n".join(lines)


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    root = os.path.dirname(os.path.dirname(here))
    parser = argparse.ArgumentParser(description="Per-gesture figures of the gesture catalogue on real recordings.")
    parser.add_argument("--pelmora", default=os.path.join(root, "build", "tools", "pelmora"))
    parser.add_argument("--catalogue", default=os.path.join(root, "examples", "gestures", "catalogue.xml"))
    parser.add_argument("--data", default=os.path.join(os.path.dirname(root), "shared", "data"))
    parser.add_argument("--cache", default=os.path.join(root, "build", "data"))
    parser.add_argument("--baseline", metavar="REVISION", help="a git revision whose catalogue's F1 to print beside each gesture's")
    parser.add_argument("--in-sample", action="store_true", help="the catalogue's own figures rather than left-out subjects'")
    parser.add_argument("--passes", type=int, default=2, help="search passes of each left-out subject's refit")
    args = parser.parse_args()
    started = time.monotonic()

    missing = missing_data(args.data)
    if missing:
        sys.exit(missing)
    unpack(args.data, args.cache)
    import_precog(args.pelmora, args.data, args.cache)
    labels = os.path.join(root, "examples", "labels")
    with tempfile.TemporaryDirectory() as earlier:
        if args.baseline:
            earlier_catalogue, earlier_labels = checkout(root, args.baseline, earlier)
        for name, folder, form, window in DATASETS:
            result = (evaluate(args.pelmora, args.catalogue, labels, args.cache, folder, form, window) if args.in_sample
                      else left_out(args.pelmora, args.catalogue, labels, args.cache, folder, form, window, args.passes))
            baseline = evaluate(args.pelmora, earlier_catalogue, earlier_labels, args.cache, folder, form, window) if args.baseline else None
            print(table(name, result, baseline))
            print()
    minutes, seconds = divmod(round(time.monotonic() - started), 60)
    print(f"Measured in {minutes} min {seconds} s.")
    sys.stdout.flush()


if __name__ == "__main__":
    main()
