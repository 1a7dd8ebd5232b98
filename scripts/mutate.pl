# The work of scripts/mutate, which builds first. A broken source is compiled alone and linked before the libraries, whose
# own object of that source is then not taken. A broken header's functions are compiled alone, too, and linked before
# everything: of equal functions the linker takes the first. What includes the header is compiled once more for that,
# unbroken and with nothing inlined.
use strict;
use warnings;
use Digest::MD5 'md5_hex';  # as a name, no more
use Getopt::Long;
use JSON::PP;
use List::Util qw(max sum0);
use POSIX ();
use Time::HiRes 'time';

my $usage = "usage: scripts/mutate [--sample N [--seed S]] [--minutes M] [--jobs J] [--again | FILE[:LINE]...]\n";
my ($sample, $seed, $minutes, $jobs, $again) = (0, 1, 0, 4, 0);
GetOptions('sample=i' => \$sample, 'seed=i' => \$seed, 'minutes=f' => \$minutes, 'jobs=i' => \$jobs,
           'again' => \$again) or die $usage;

my ($build, $work) = ('build/native', 'build/mutate');
my $list = "$work/again";  # file, line, its text, broken text
my $root = POSIX::getcwd();
mkdir $work;
$ENV{CCACHE_DISABLE} = 1;  # no break is compiled twice

# --- What to break ---------------------------------------------------------------------------------------------------

# The line with comments and literals blanked out, so that nothing in them is taken for code.
sub code_of {
    my ($line) = @_;
    $line =~ s{("(?:[^"\\]|\\.)*"|'(?:[^'\\]|\\.)+'(?!\d))}{'_' x length $1}ge;
    $line =~ s{(//.*)}{' ' x length $1}e;
    return $line;
}

# What stands for what. Operators have spaces around them in this layout, templates' brackets have not.
my %instead = ('<' => '<=', '<=' => '<', '>' => '>=', '>=' => '>', '==' => '!=', '!=' => '==', '+' => '-', '-' => '+',
               '*' => '/', '/' => '*', '%' => '*', '&&' => '||', '||' => '&&', '+=' => '-=', '-=' => '+=',
               '*=' => '+=', '&' => '|', '|' => '&', 'min' => 'max', 'max' => 'min', 'true' => 'false',
               'false' => 'true', '++' => '--', '--' => '++');

# Every break of one line, as the line's new text.
sub breaks_of {
    my ($line) = @_;
    my $code = code_of($line);
    return () if $code =~ /^\s*(#|using |namespace |template|static_assert|class |struct |enum |friend |\}?$)/;
    my @breaks;
    my $put = sub { my ($at, $length, $text) = @_; my $new = $line; substr($new, $at, $length) = $text; push @breaks, $new };
    while ($code =~ /(?<= )([<>=!]=|[<>+*\/%&|-]|&&|\|\||[+*-]=)(?= )/g) {
        $put->($-[1], length $1, $instead{$1});
    }
    $put->($-[1], length $1, $instead{$1}) while $code =~ /(\+\+|--)/g;
    $put->($-[1], length $1, $instead{$1}) while $code =~ /\b(true|false)\b/g;
    $put->($-[1], length $1, $instead{$1}) while $code =~ /\bstd::(min|max)\b/g;
    while ($code =~ /(?<![\w.'])(\d+)(?=[uU]?\b)(?![.'xX\w])/g) {  # whole decimal numbers
        my ($at, $number) = ($-[1], $1);
        my $time = $line =~ m{//\s*(ms|us|s)\b|\bSleepMs\(|\bchrono::};  # nobody can notice one millisecond more
        next if $time && $number == 0;
        $put->($at, length $number, $time ? $number * 10 : $number + 1);
        $put->($at, length $number, $time ? int($number / 10) : $number - 1) if $number > 0;
    }
    if ($code =~ /^\s*(?:\} else )?(?:if|while) (\((?:[^()]|(?1))*\))/) {
        $put->($-[1], length $1, '(!' . substr($line, $-[1], length $1) . ')');
    }
    # A statement left out: a call, an assignment, a jump, alone or behind a condition.
    if ($code =~ /^(\s*|.*\) )((?!return|if|for|while|else|case|throw|delete)[\w.:>&*(\[][^{}?]*;)\s*$/) {
        my ($at, $statement) = ($-[2], $2);
        $put->($at, length $statement, ';')
            if $statement =~ /^(break|continue)|^\S+( [+*-]?= |\()|^\S+(\+\+|--);/ && $statement !~ /= delete;/;
    }
    if ($code =~ /\breturn (?!(?:\{\}|true|false|nullptr|-?\d+|\*this);)([^{]+?);/) {
        $put->($-[1], length $1, '{}');
    }
    return @breaks;
}

# The lines of a file that can be broken: of a header, those in functions that the compiler does not evaluate itself.
sub lines_of {
    my ($file) = @_;
    open my $in, '<', $file or die "$file: $!\n";
    my @lines = <$in>;
    close $in;
    chomp @lines;
    return (\@lines, 0 .. $#lines) if $file =~ /\.cpp$/;
    my (@inside, $end);
    for my $i (0 .. $#lines) {
        if (defined $end) {
            if ($lines[$i] =~ $end) { undef $end } else { push @inside, $i }
        } elsif ($lines[$i] =~ /constexpr|^\s*(struct|class|enum|namespace) /) {
            next;
        } elsif ($lines[$i] =~ /\).*\{.*\}/) {
            push @inside, $i;
        } elsif ($lines[$i] =~ /^(\s*)\S.*\).*\{$/) {
            $end = qr/^$1\}/;
        }
    }
    return (\@lines, @inside);
}

my %command;  # of each source in the build
{
    open my $in, '<', "$build/compile_commands.json" or die "$build is not built\n";
    for my $entry (@{decode_json(join '', <$in>)}) {
        $entry->{file} =~ s{^\Q$root\E/}{};
        ($command{$entry->{file}} = $entry->{command}) =~ s{^\S*ccache }{};
    }
}

# Named on the command line: files, folders, FILE:LINE; or, with --again, what the last run listed.
my @mutants;
sub add_file {
    my ($file, $only) = @_;
    die "$file is not in the native build\n" if $file =~ /\.cpp$/ && !$command{$file};
    my ($lines, @which) = lines_of($file);
    for my $i (@which) {
        next if $only && $i + 1 != $only;
        push @mutants, map { {file => $file, line => $i + 1, was => $lines->[$i], text => $_} } breaks_of($lines->[$i]);
    }
}
if ($again) {
    open my $in, '<', $list or die "No run has listed anything yet\n";
    for (<$in>) {
        chomp;
        my ($file, $line, $was, $text) = split /\t/;
        my ($lines) = lines_of($file);
        ($line) = sort { abs($a - $line) <=> abs($b - $line) } grep { $lines->[$_ - 1] eq $was } 1 .. @$lines;
        push @mutants, {file => $file, line => $line, was => $was, text => $text} if $line;
    }
} else {
    for my $name (@ARGV ? @ARGV : ('engine', 'driver', 'driver/model/data_ring.h', 'hardware', 'selection', 'settings')) {
        my ($file, $line) = $name =~ /^(?:\.\/)?(.*?)\/?(?::(\d+))?$/;
        if (-d $file) { add_file($_) for sort grep { index($_, "$file/") == 0 } keys %command }
        else { add_file($file, $line) }
    }
}
my $all = @mutants;
if ($sample && $sample < @mutants) {  # by the break itself, so that a change elsewhere leaves the choice as it is
    my %key = map { $_ => md5_hex("$seed $_->{file} $_->{was} $_->{text}") } @mutants;
    @mutants = (sort { $key{$a} cmp $key{$b} } @mutants)[0 .. $sample - 1];
}
die "Nothing to break\n" unless @mutants;

# --- Running the tests -----------------------------------------------------------------------------------------------

# Runs these tests, until one fails. Returns the failed ones, or 'time-out' or 'crash'; nothing when all passed.
sub run_tests {
    my ($program, $folder, $seconds, $log, @tests) = @_;
    my $first = @tests == 1 && $tests[0] eq '*' ? '' : '--gtest_fail_fast';
    system('bash', '-c', 'ulimit -v 8000000; cd "$1" && TMPDIR=$1 TEST_TMPDIR=$1/ exec timeout -s KILL "$2" "$3" ' .
                         '--gtest_filter="$4" $6 >"$5" 2>&1',
           'run', $folder, $seconds, $program, join(':', @tests), $log, $first);
    return () if $? == 0;
    return 'time-out' if ($? >> 8) == 137 || ($? & 127) == 9;
    open my $in, '<', $log or die "$log: $!\n";
    my @failed = map { /^\[  FAILED  \] (\S+)(?:,.*)? \(\d+ ms\)$/ ? $1 : () } <$in>;
    return @failed ? @failed : 'crash';
}

# The unbroken tests: each must pass, and its time is what the broken ones are given a multiple of. The same program need
# not prove itself again.
my %seconds;
{
    open my $program, '<:raw', "$build/native_tests" or die "$build is not built\n";
    my $proof = "$root/$work/unbroken-" . Digest::MD5->new->addfile($program)->hexdigest . '.log';
    if (!-e $proof) {
        my ($folder, $log) = ("$root/$work/unbroken", "$root/$work/unbroken/tests.log");
        system('rm', '-rf', $folder) == 0 && mkdir $folder or die "$folder: $!\n";
        my $program = "$root/$build/native_tests";
        # Where the machine is busy a test of times may have another try.
        my @failed = map { /\./ ? run_tests($program, $folder, 600, "$folder/again.log", $_) : $_ }
                     run_tests($program, $folder, 600, $log, '*');
        die "The unbroken tests fail: @failed; see $folder\n" if @failed;
        rename $log, $proof or die "$proof: $!\n";
    }
    open my $in, '<', $proof or die "$proof: $!\n";
    /^\[ (?:      OK|  FAILED ) \] (\S+) \((\d+) ms\)/ and $seconds{$1} = $2 / 1000 for <$in>;
    die "The unbroken tests say nothing: $proof\n" unless %seconds;
}
my $link = `ninja -C $build -t commands native_tests | tail -n 1`;
$link =~ s{^\s*: && (\S*ccache )?}{}; $link =~ s{ && :\s*$}{ -Wl,--strip-debug};
die "How the tests are linked is not clear: $link\n" unless $link =~ /\S+\.o / && $link =~ / -o native_tests /;

# Compiles one source; true when it can be.
sub compile {
    my ($command, $folder, $options, $source, $object) = @_;
    $command =~ s{^(\S+)}{$1 -I$folder};
    $command =~ s{ -o \S+ -c \S+}{ -w $options -o $object -c $source} or die "How $source is compiled is not clear\n";
    return system("cd $build && $command >$folder/compiler.log 2>&1") == 0;
}

# Compiles what includes a header, with nothing inlined. Returns the linker's command that takes these objects.
my %link_of;
sub link_apart {
    my ($header) = @_;
    return $link_of{$header} if $link_of{$header};
    my $folder = "$root/$work/apart";
    system('mkdir', '-p', $folder) == 0 or die "$folder: $!\n";
    my ($linking, $object, %sources) = ($link);
    for (`ninja -C $build -t deps`) {
        if (/^(\S+\.o):/) { $object = $1 }
        elsif (m{^\s+(?:\Q$root\E/|\.\./\.\./)?\Q$header\E$}) { $sources{$object} = 1 }
    }
    my ($number, $compiling) = (0, 0);
    my $next = sub { wait; $? == 0 or die "What includes $header does not compile: see $folder\n"; $compiling-- };
    for my $file (sort keys %command) {
        my ($object) = $command{$file} =~ / -o (\S+)/;
        next unless $sources{$object} && $file !~ m{^(bench|fuzz|soak)/};
        my $apart = "$folder/" . $number++ . '.o';
        $next->() if $compiling == $jobs;
        my $pid = fork // die "fork: $!\n";
        POSIX::_exit(!compile($command{$file}, $folder, '-O0 -g0', "$root/$file", $apart)) if $pid == 0;
        $compiling++;
        $linking =~ s{(^| )\Q$object\E }{$1$apart } or $linking =~ s{( \S+\.o )}{ $apart$1};
    }
    $next->() while $compiling;
    return $link_of{$header} = $linking;
}

my %noticer;  # how many breaks of a file each test has noticed
sub first_to_last {  # groups of tests: those that noticed most of the file's breaks, then quick ones first
    my ($file) = @_;
    my $score = $noticer{$file} // {};
    my @best = sort { $score->{$b} <=> $score->{$a} } keys %$score;
    splice @best, 6 if @best > 6;
    my %best = map { $_ => 1 } @best;
    my @groups = (\@best, [], [], []);
    for my $test (grep { !$best{$_} } keys %seconds) {
        push @{$groups[$seconds{$test} < 0.2 ? 1 : $seconds{$test} < 3 ? 2 : 3]}, $test;
    }
    return @groups;
}

# Compiles, links and tests one break, in a process of its own. Returns 'does not compile', 'unnoticed', or who noticed.
sub judge {
    my ($mutant, $folder) = @_;
    my $file = $mutant->{file};
    my ($lines) = lines_of($file);
    $lines->[$mutant->{line} - 1] = $mutant->{text};
    my $copy = "$folder/$file";
    system('mkdir', '-p', $copy =~ s{/[^/]*$}{}r) == 0 or die "$folder: $!\n";
    open my $out, '>', $copy or die "$copy: $!\n";
    print $out "$_\n" for @$lines;
    close $out;
    my ($source, $options, $command, $linking) = ($copy, '-O1 -g0', $command{$file}, $link);
    if ($file =~ /\.h$/) {
        $source = "$folder/header.cpp";
        open $out, '>', $source or die "$source: $!\n";
        print $out "#include \"$file\"\n";
        close $out;
        $options = '-O0 -g0 -fkeep-inline-functions';
        ($command) = map { $command{$_} } grep { m{^driver/} } sort keys %command;
        $linking = link_apart($file);
    }
    compile($command, $folder, $options, $source, "$folder/broken.o") or return 'does not compile';
    $linking =~ s{(\S+\.o )}{$folder/broken.o $1};
    $linking =~ s{ -o native_tests }{ -o $folder/tests };
    system("cd $build && $linking >$folder/linker.log 2>&1") == 0 or return 'does not link';
    for my $group (first_to_last($file)) {
        my @tests = @$group;
        while (@tests) {
            my $limit = POSIX::ceil(15 + 5 * sum0(map { $seconds{$_} } @tests));
            my ($failed) = run_tests("$folder/tests", $folder, $limit, "$folder/tests.log", @tests);
            last unless $failed;
            return $failed if $failed eq 'time-out' || $failed eq 'crash';
            # A busy machine can turn a test of times red: only who notices twice has noticed.
            return $failed if run_tests("$folder/tests", $folder, $limit, "$folder/again.log", $failed);
            @tests = grep { $_ ne $failed } @tests;
        }
    }
    return 'unnoticed';
}

# --- All of them -----------------------------------------------------------------------------------------------------

my $started = time;
my (%running, %result);
my ($tried, $next) = (0, 0);
$| = 1;
printf "%d of %d breaks, %d tests of %.0f s\n", scalar @mutants, $all, scalar keys %seconds, sum0(values %seconds);

sub reap {
    my $pid = wait;
    my ($mutant, $folder) = @{delete $running{$pid} // return};
    open my $in, '<', "$folder/result" or die "A break ended without a result: see $folder\n";
    chomp(my $result = <$in>);
    die "$mutant->{file}:$mutant->{line} $result: see $folder\n" if $result =~ /^does not link|^failed/;
    system('rm', '-rf', $folder);
    $mutant->{result} = $result;
    $noticer{$mutant->{file}}{$result}++ if exists $seconds{$result};
    printf "%4d/%d %s:%d %s\n", ++$tried, scalar @mutants, $mutant->{file}, $mutant->{line}, $result;
}

link_apart($_) for grep { /\.h$/ } map { $_->{file} } @mutants;  # before the processes part
for my $mutant (@mutants) {
    last if $minutes && time - $started > 60 * $minutes;
    reap() if keys %running >= $jobs;
    my $folder = "$root/$work/break" . $next++;
    system('rm', '-rf', $folder);
    mkdir $folder or die "$folder: $!\n";
    my $pid = fork // die "fork: $!\n";
    if ($pid == 0) {
        my $result = eval { judge($mutant, $folder) } // "failed: $@";
        open my $out, '>', "$folder/result" or POSIX::_exit(1);
        print $out "$result\n";
        close $out;
        POSIX::_exit(0);
    }
    $running{$pid} = [$mutant, $folder];
}
reap() while %running;

my @done = grep { defined $_->{result} && $_->{result} ne 'does not compile' } @mutants;
my @listed = sort { $a->{file} cmp $b->{file} || $a->{line} <=> $b->{line} } @done;
my @unnoticed = grep { $_->{result} eq 'unnoticed' } @listed;
my @timeouts = grep { $_->{result} eq 'time-out' } @listed;
open my $out, '>', $list or die "$list: $!\n";
print $out join("\t", @$_{qw(file line was text)}), "\n" for @unnoticed, @timeouts;
close $out;
for (['Noticed by a time-out, which a busy machine makes, too', @timeouts], ['Unnoticed', @unnoticed]) {
    my ($title, @which) = @$_;
    print "\n$title:\n" if @which;
    printf "%s:%d\n    %s\n    %s\n", $_->{file}, $_->{line}, map { s/^\s+//r } $_->{was}, $_->{text} for @which;
}
my $left = grep { !defined $_->{result} } @mutants;
printf "%d more were not tried in the time\n", $left if $left;
printf "mutants %d, noticed %d (%d by a time-out), unnoticed %d\n", scalar @done, @done - @unnoticed,
    scalar @timeouts, scalar @unnoticed;
