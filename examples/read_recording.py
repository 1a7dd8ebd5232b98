"""Opens a recording that ltr27rec has made with -o NAME.npy: python3 read_recording.py NAME.npy [plot.png]

Works while the recording still grows, too: its name is NAME.npy.part then. Needs numpy, and matplotlib for the plot.
"""
import json
import os
import sys

import numpy as np


class Recording:
    """recording[i]: values of the i-th recorded channel, NaN where nothing was measured. recording.time: s."""

    def __init__(self, path):
        folder, name = os.path.split(path)
        before, _, after = name.rpartition(".npy")
        # Samples are read from the disk when they are asked for, however many there are. The array comes first: what it
        # counts is described.
        self.samples = np.load(path, mmap_mode="r")
        with open(os.path.join(folder, before + ".json" + after), encoding="utf-8") as file:
            self.about = json.load(file)
        self.channels = self.about["channels"]
        self.time = (self.about["first_kadr"] + np.arange(len(self.samples))) / self.about["rate_hz"]

    def __getitem__(self, column):
        channel = self.channels[column]
        values = self.samples[:, column] / channel["scale"] + channel["offset"]
        if not channel["fitted"]:
            values[:] = np.nan
        for gap in self.about["gaps"]:
            if gap["module"] == channel["number"] // 16:
                first = max(gap["first_kadr"] - self.about["first_kadr"], 0)
                values[first:first + gap["kadrs"]] = np.nan
        return values

    def label(self, column):
        channel = self.channels[column]
        return channel["name"] + (f" ({channel['unit']})" if channel["unit"] else "")


if __name__ == "__main__":
    recording = Recording(sys.argv[1])
    about = recording.about
    print(f"{about['device']}{' (SIMULATED)' if about['simulated'] else ''}, {about['start']}, "
          f"{len(recording.samples)} kadrs at {about['rate_hz']:g} Hz, {about['ended'] or 'still running, or cut off'}")
    for column in range(len(recording.channels)):
        values = recording[column]
        measured = values[~np.isnan(values)]
        extent = f"{measured.min():.6g} to {measured.max():.6g}" if len(measured) else "nothing measured"
        print(f"{recording.label(column)}: {extent}, {len(values) - len(measured)} not measured")
    if len(sys.argv) > 2:
        import matplotlib.pyplot as plot
        for column in range(len(recording.channels)):
            plot.plot(recording.time, recording[column], label=recording.label(column))
        plot.xlabel("s")
        plot.legend()
        plot.savefig(sys.argv[2])
