// Records two seconds from four channels and prints physical values: cscript //nologo record.js
var channels = [0, 1, 2, 3], seconds = 2, rate = 100;

var adc = new ActiveXObject("Tessmark.Corvane");
adc.Interactive = false;  // no windows: with several crates, name one with CrateSerial
if (!adc.Test()) {
    WScript.Echo("No device: " + adc.LastError);
    WScript.Quit(1);
}

var ranges = new VBArray(adc.Ranges).toArray();
WScript.Echo(adc.ADCName + ", " + adc.ChannelsCount + " channels, up to " + adc.RateMax + " Hz");
for (var index = 0; index < adc.ChannelsCount; index++) {
    WScript.Echo(index + ": " + adc.ChannelName(index) + ", " + ranges[adc.ChannelRange(index)]);
}

adc.InputChannels = channels;
adc.Rate = rate;
adc.InputSizeData = 2 * seconds * rate * channels.length;
if (!adc.StartRecord()) {
    WScript.Echo("Not started: " + adc.LastError);
    WScript.Quit(1);
}
while (adc.Busy && adc.InputCountKadrs < seconds * rate) pause();
adc.StopRecord();

// One kadr after the other; the first holds the channel numbers.
var samples = new VBArray(adc.InputData).toArray();
var columns = adc.InputCountChannels;
WScript.Echo("Kadrs: " + (samples.length / columns - 1) + " at " + adc.Rate + " Hz");
for (var kadr = 1; kadr <= 5 && (kadr + 1) * columns <= samples.length; kadr++) {
    var line = "";
    for (var column = 0; column < columns; column++) {
        line += physical(samples[kadr * columns + column], samples[column]) + "; ";
    }
    WScript.Echo(line);
}

// Four numbers a gap: module, first kadr, kadrs, reason. Samples of these kadrs were filled in, not measured.
var gaps = new VBArray(adc.Gaps).toArray();
for (var gap = 0; gap < gaps.length; gap += 4) {
    WScript.Echo("Not measured: module " + gaps[gap] + ", " + gaps[gap + 2] + " kadrs from " + gaps[gap + 1] +
        ", reason " + gaps[gap + 3]);
}

// Wine's script host can't sleep; polling alone does there.
function pause() {
    try {
        WScript.Sleep(50);
    } catch (error) {
    }
}

function physical(sample, channel) {
    var value = sample / adc.ChannelUnitScale(channel) + adc.ChannelUnitOffset(channel);
    return Math.round(value * 10000) / 10000 + " " + adc.ChannelUnitName(channel);
}
