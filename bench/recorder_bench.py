#!/usr/bin/python3
"""How long the recorder's files take, their sizes and the memory for them, against the plain ways to do the same.

    recorder_bench.py HOURS

All is of 32 channels at 1000 Hz: arrays of a day, which need 12 GB of disk, and texts of so many hours, which need 2.1
GB for each. Exit code 1 when a limit is missed.
"""
import os
import shutil
import statistics
import subprocess
import sys
import threading
import time

import numpy as np
import pandas as pd

HOURS = float(sys.argv[1])
LTR27REC, WRITERS = "build/native/ltr27rec", "build/native/writers"
FOLDER = "build/recorder-bench"
CHANNELS, RATE = 32, 1000
KADRS = round(HOURS * 3600 * RATE)
DAY_KADRS = 24 * 3600 * RATE
MEMORY_MAX = 64  # MB
ROUNDS = 3
all_met = True
largest = {}  # MB of memory, by command


def run(*command):
    """Seconds of a program's run."""
    start = time.perf_counter()
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL)
    watch = threading.Thread(target=watch_memory, args=(process.pid, f"{os.path.basename(command[0])} {command[1]}"))
    watch.start()
    status = process.wait()
    seconds = time.perf_counter() - start
    watch.join()
    if status != 0:
        sys.exit(f"{' '.join(command)} ended with {status}")
    return seconds


def watch_memory(pid, name):
    """Not what the system says of an ended process: that counts the memory of this one, too, which started it."""
    try:
        while True:
            with open(f"/proc/{pid}/status", encoding="ascii") as text:
                kilobytes = [int(line.split()[1]) for line in text if line.startswith("VmHWM:")]
            if not kilobytes:
                return
            largest[name] = max(largest.get(name, 0), kilobytes[0] / 1000)
            time.sleep(0.01)
    except (FileNotFoundError, ProcessLookupError):  # it has ended
        pass


def drop(path):
    """Lets the system forget what it has of a file in memory."""
    with open(path, "rb") as file:
        os.fdatasync(file.fileno())
        os.posix_fadvise(file.fileno(), 0, 0, os.POSIX_FADV_DONTNEED)


def read(path):
    buffer = bytearray(1 << 20)
    with open(path, "rb", buffering=0) as file:
        while file.readinto(buffer):
            pass


def timed(function):
    start = time.perf_counter()
    function()
    return time.perf_counter() - start


def pairs(driver, alternative, prepare=lambda: None):
    """Median times of both, which take turns, and the median of their ratios."""
    times = []
    for _ in range(ROUNDS):
        prepare()
        one = driver()
        prepare()
        times.append((one, alternative()))
    ratio = statistics.median(one / other for one, other in times)
    return *(statistics.median(side) for side in zip(*times)), ratio


def row(what, against, times, limit, faster=False):
    global all_met
    driver, alternative, ratio = times
    ratio = 1 / ratio if faster else ratio
    met = ratio >= limit if faster else ratio <= limit
    all_met = all_met and met
    bound = "at least" if faster else "at most"
    print(f"| {what} | {driver:.2f} s | {against} | {alternative:.2f} s | {ratio:.2f} x | {bound} {limit:g} x |"
          f" {'yes' if met else 'NO'} |", flush=True)


def size(name):
    return os.path.getsize(f"{FOLDER}/{name}") / 1e9


shutil.rmtree(FOLDER, ignore_errors=True)
os.makedirs(FOLDER)
npy, csv, page = f"{FOLDER}/a.npy", f"{FOLDER}/a.csv", f"{FOLDER}/a.html"


def writer(kind, name, kadrs=KADRS):
    return lambda: run(WRITERS, kind, f"{FOLDER}/{name}", str(kadrs))


def fresh():
    """No file is written over an old one, and none waits for another's bytes to reach the disk."""
    for name in ("a.csv", "b.csv", "b.npy"):
        if os.path.exists(f"{FOLDER}/{name}"):
            os.remove(f"{FOLDER}/{name}")
    os.sync()


print("| what | time | against | time | ratio | limit | met |\n|---|---|---|---|---|---|---|")
row("writing a NumPy file of a day", "memcpy and write",
    pairs(writer("npy", "a.npy", DAY_KADRS), writer("copy", "b.npy", DAY_KADRS), fresh), 1.5)
fresh()
row(f"writing CSV of {HOURS:g} h", "faster than fmt and fwrite",
    pairs(writer("csv", "a.csv"), writer("fmt", "b.csv"), fresh), 3, True)
fresh()
influx = run(WRITERS, "influx", "-", str(KADRS))
run(WRITERS, "influx", f"{FOLDER}/a.influx", str(RATE))
influx_bytes = os.path.getsize(f"{FOLDER}/a.influx") / (RATE * CHANNELS)

row("report of a day, from the disk", "reading it",
    pairs(lambda: run(LTR27REC, "report", npy, "-q", "-o", page), lambda: timed(lambda: read(npy)),
          lambda: drop(npy)), 1.5)

# A minute of the samples, for tools that hold all of them in memory.
part = np.load(npy, mmap_mode="r")[: 60 * RATE]
scales = np.where(np.arange(CHANNELS) % 2 == 0, 1638.4, 131.072)
offsets = np.where(np.arange(CHANNELS) % 3 == 0, 125.0, 0)
values = part / scales + offsets
frame = pd.DataFrame(values)
text = f"{FOLDER}/other.csv"
convert = lambda: run(LTR27REC, "convert", npy, "--to", "60s", "-q", "-o", csv)
row("convert, a minute", "faster than numpy.savetxt",
    pairs(convert, lambda: timed(lambda: np.savetxt(text, values, fmt="%.5f", delimiter=","))), 3, True)
row("convert, a minute", "faster than pandas.to_csv",
    pairs(convert, lambda: timed(lambda: frame.to_csv(text, float_format="%.5f"))), 3, True)
whole = run(LTR27REC, "convert", npy, "--to", f"{HOURS}h", "-q", "-o", csv)

samples = KADRS * CHANNELS
print(f"\nconvert of {HOURS:g} h {whole:.1f} s, {whole / samples * 1e9:.1f} ns a value; "
      f"line protocol into nothing {influx:.1f} s, {influx / samples * 1e9:.1f} ns a value")
print(f"sizes: NumPy file of a day {size('a.npy'):.2f} GB, its page {size('a.html') * 1000:.1f} MB, "
      f"CSV {os.path.getsize(csv) / samples:.1f} bytes a value, line protocol {influx_bytes:.0f} bytes a value")
memory = {name: megabytes for name, megabytes in largest.items() if name.split()[1] not in ("copy", "fmt")}
print(f"memory, at most {MEMORY_MAX} MB: " + ", ".join(f"{name} {mb:.0f} MB" for name, mb in memory.items()))
shutil.rmtree(FOLDER)
sys.exit(0 if all_met and max(memory.values()) <= MEMORY_MAX else 1)
