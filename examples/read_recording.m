% [values, time, about] = read_recording('NAME.npy'), in Octave or MATLAB (never run in MATLAB: none was at hand).
% Opens a recording that ltr27rec has made with -o NAME.npy: a column of values for each recorded channel, NaN where
% nothing was measured; the times in s; and what NAME.json says. plot(time, values) shows it.
function [values, time, about] = read_recording(path)
    about = jsondecode(fileread(strrep(path, '.npy', '.json')));
    file = fopen(path, 'r', 'ieee-le');
    fread(file, 8, 'uint8');
    head = fread(file, fread(file, 1, 'uint16'), '*char')';
    shape = sscanf(regexp(head, '\d+, \d+', 'match', 'once'), '%d, %d');
    samples = fread(file, [shape(2), shape(1)], 'int16')';
    fclose(file);

    time = (about.first_kadr + (0:shape(1) - 1)') / about.rate_hz;
    values = zeros(size(samples));
    for column = 1:shape(2)
        channel = about.channels(column);
        values(:, column) = samples(:, column) / channel.scale + channel.offset;
        if ~channel.fitted
            values(:, column) = NaN;
        end
        for gap = about.gaps(:)'
            if gap.module == floor(channel.number / 16)
                first = max(gap.first_kadr - about.first_kadr, 0) + 1;
                last = min(gap.first_kadr - about.first_kadr + gap.kadrs, shape(1));
                values(first:last, column) = NaN;
            end
        end
    end
end
