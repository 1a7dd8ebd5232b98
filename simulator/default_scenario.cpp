// The installation that is simulated when there is no scenario file. It shows every kind of key once or more, with what
// it means.
#include "simulator/scenario.h"

namespace ltrsim {

const char* const DefaultScenario = R"toml(
# 1.0 is real time, 10 ten times as fast, 0 as fast as the words are read.
speed = 1.0

[[server]]
address = "127.0.0.1"

[[server.crate]]
serial = "3T123456"
type = "LTR030"              # or LTR010, LTR021, LTR031, LTR032
interface = "USB"            # or Ethernet
# list_position = 0          # 0 to 15, where the server lists the crate; left out: as in this file
# "by mode": a mark that the crate makes itself comes at once, one that waits for an edge comes start_mark_after
# seconds later or, without that key, never. "at once" and "never" apply to all modes.
start_marks = "by mode"
# start_mark_after = 0.3
# At speed 0 a mark made at once appears this many kadrs after the next one that is delivered.
start_mark_kadr = 3

[[server.crate.module]]
slot = 1                     # 1 to 16
id = "LTR11"                 # or a number: 0x0B0B

[[server.crate.module]]
slot = 3
id = "LTR27"
serial = "2T340017"
revision = "B"
firmware = "1.0.2.3"
processor = "ATMEGA8515"
clock_rate = 15e6            # Hz

# position 1 to 8. bottom and top are the unit's values at code 0 and code 32768. signal is one table for both channels
# or an array of one for each: kind constant, sine, ramp, square, noise or sequence; offset, amplitude and noise (half
# the width of a uniform random part) in the unit, frequency in Hz, seed a whole number. sequence numbers the kadrs: kadr
# k gives code k mod 32768 in the first channel and k div 32768 (mod 32768) in the second, without calibration.
# calibration: offset and scale of the first, then of the second channel, code = (raw + offset) * scale; left out, every
# channel gets coefficients of its own.
[[server.crate.module.mezzanine]]
position = 1
name = "H-27U10"
serial = "U10-0412"
revision = "A"
unit = "В"
bottom = -10
top = 10
signal = [{ kind = "sine", amplitude = 8, frequency = 1 },
          { kind = "sine", amplitude = 3, frequency = 0.2, offset = 1, noise = 0.3 }]
calibration = [-61.25, 0.9871, -48.5, 1.0124]

[[server.crate.module.mezzanine]]
position = 2
name = "H-27U01"
serial = "U01-0087"
revision = "B"
unit = "мВ"
bottom = 0
top = 1000
signal = [{ kind = "ramp", amplitude = 400, frequency = 0.5, offset = 500 },
          { kind = "square", amplitude = 300, frequency = 2, offset = 450, noise = 5 }]

[[server.crate.module.mezzanine]]
position = 3
name = "H-27I20"
serial = "I20-0230"
revision = "A"
unit = "мА"
bottom = 0
top = 20
signal = [{ kind = "constant", offset = 12 },
          { kind = "sine", amplitude = 4, frequency = 0.1, offset = 12, noise = 0.2, seed = 7 }]

[[server.crate.module.mezzanine]]
position = 4
name = "H-27I10"
serial = "I10-0019"
revision = "C"
unit = "mA"
bottom = -5
top = 20
signal = [{ kind = "square", amplitude = 6, frequency = 0.25, offset = 7 },
          { kind = "ramp", amplitude = -10, frequency = 0.2, offset = 8 }]

[[server.crate.module.mezzanine]]
position = 5
name = "H-27R250"
serial = "R250-103"
revision = "A"
unit = "Ом"
bottom = 0
top = 250
signal = [{ kind = "constant", offset = 100, noise = 0.1 },
          { kind = "sine", amplitude = 15, frequency = 0.05, offset = 120, noise = 0.5 }]

[[server.crate.module.mezzanine]]
position = 7
name = "H-27T"
serial = "T-000551"
revision = "D"
unit = "°C"
bottom = -50
top = 150
signal = [{ kind = "sine", amplitude = 2, frequency = 0.02, offset = 23, noise = 0.2 },
          { kind = "noise", offset = 60, noise = 1.5 }]

[[server.crate.module]]
slot = 5
id = "LTR27"
serial = "2T340122"
firmware = "1.0.2.4"

[[server.crate.module.mezzanine]]
position = 1
name = "H-27U20"
serial = "U20-0005"
unit = "V"
bottom = -20
top = 20
signal = [{ kind = "sine", amplitude = 15, frequency = 5 },
          { kind = "sine", amplitude = 15, frequency = 0.5, noise = 1 }]

[[server.crate.module.mezzanine]]
position = 2
name = "H-27I5"
serial = "I5-00077"
unit = "мА"
bottom = 0
top = 5
signal = [{ kind = "ramp", amplitude = 2.5, frequency = 0.1, offset = 2.5 },
          { kind = "constant", offset = 4 }]

[[server.crate.module.mezzanine]]
position = 4
name = "H-27R100"
serial = "R100-064"
unit = "Ом"
bottom = 0
top = 100
signal = { kind = "sine", amplitude = 30, frequency = 0.1, offset = 50, noise = 0.4 }

[[server.crate.module.mezzanine]]
position = 8
name = "H-27T"
serial = "T-000614"
unit = "°C"
bottom = -50
top = 150
signal = [{ kind = "ramp", amplitude = 40, frequency = 0.01, offset = 60 },
          { kind = "constant", offset = 21.5 }]

# Faults. What they aim at: call (a function's name), server, crate (serial), slot; each left out is any. LTR_ functions
# don't know a slot, and the two Init functions not even where they will connect to: they can't be aimed by these. When:
# after (so many matching calls pass first), at (seconds since the start), times (so many calls are affected; left out:
# all). What they do, exactly one of:
#   error = n       the call fails
#   delay = s       it takes so many seconds longer; clearing the faults ends that
#   unplug = true   all later calls for the server, crate or slot fail, and its modules stop
#   short = n       LTR27_Recv delivers n words at most
#   excess = n      it claims n words more than it was asked for
#   stall = true    it delivers nothing
#   marks = n       it delivers senseless time marks, from n on; so does LTR_Open
#   value = x       LTR27_ProcessData gives x for channel 0 once; nan and inf can be given, too
#   size = n        it claims to have made n values
# [[fault]]
# call = "LTR27_Recv"
# slot = 3
# at = 5
# unplug = true
)toml";

}  // namespace ltrsim
