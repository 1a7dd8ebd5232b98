"""Never run: there is no pywin32 under Wine. Records two seconds from four channels: python record.py, with pywin32"""
import sys
import time

import pythoncom

CHANNELS = (0, 1, 2, 3)
SECONDS = 2
RATE = 100

adc = pythoncom.CoCreateInstance(
    pythoncom.MakeIID("Tessmark.Corvane"), None,
    pythoncom.CLSCTX_INPROC_SERVER | pythoncom.CLSCTX_LOCAL_SERVER, pythoncom.IID_IDispatch)


def invoke(name, kind, *values):
    return adc.Invoke(adc.GetIDsOfNames(name), 0, kind, kind != pythoncom.DISPATCH_PROPERTYPUT, *values)


def get(name, *values):
    return invoke(name, pythoncom.DISPATCH_PROPERTYGET, *values)


def put(name, value):
    invoke(name, pythoncom.DISPATCH_PROPERTYPUT, value)


def call(name):
    return invoke(name, pythoncom.DISPATCH_METHOD)


if not call("Test"):
    sys.exit("No device: " + get("LastError"))
ranges = get("Ranges")
print(f"{get('ADCName')}, {get('ChannelsCount')} channels, up to {get('RateMax')} Hz")
for index in range(get("ChannelsCount")):
    print(f"{index}: {get('ChannelName', index)}, {ranges[get('ChannelRange', index)]}")

put("InputChannels", CHANNELS)
put("Rate", RATE)
put("InputSizeData", 2 * SECONDS * RATE * len(CHANNELS))
if not call("StartRecord"):
    sys.exit("Not started: " + get("LastError"))
time.sleep(SECONDS + 0.5)
call("StopRecord")

# data[column][kadr]; kadr 0 holds the channel numbers.
data = get("InputData")
print(f"Kadrs: {len(data[0]) - 1} at {get('Rate')} Hz")
for kadr in range(1, min(6, len(data[0]))):
    print("; ".join(
        f"{row[kadr] / get('ChannelUnitScale', row[0]) + get('ChannelUnitOffset', row[0]):.4f} "
        f"{get('ChannelUnitName', row[0])}" for row in data))
