#!/usr/bin/perl
# Makes the second interface of a class one of another type library: refer_to_library.pl draft.tlb other.tlb out.tlb
# The compiler of type libraries copies every interface that a class lists into the class's own library; its language
# has no word for a class that only refers to one. So the draft lists the class's own interface twice, and here the
# second one becomes a reference to the only interface of the other library.
#
# A type library is a file of little-endian 32-bit numbers:
#   header       21 numbers, of which the ones below are used
#   types        a number for each: where its record is in the segment of types
#   directory    of 15 segments, 4 numbers for each: position in the file (-1: none), length, -1, 15
#   segments     one after the other; the ones below are used; inside them places are offsets from the segment's start
#   members      of one type after the other; the types' records have their positions in the file
# What this script does not expect ends it: a wrong library would only be noticed on a host's machine.
use strict;
use warnings;
use File::Basename;

use constant SIGNATURE => "MSFT\x02\x00\x01\x00";
use constant NOTHING   => 0xFFFFFFFF;

# Numbers of the header.
use constant { LIBRARY_GUID => 2, LOCALE => 3, FLAGS => 5, VERSION => 6, TYPE_COUNT => 8, IMPORT_COUNT => 20 };
use constant HELP_LIBRARY_FLAG => 0x100;    # one more number after the header

# Segments, and the size of the records in them:
#   types        the kind is in the lowest 4 bits of the first number, the position of the members is the second number
#   imports      kind << 24 | 0x10000 (known by its identifier), its library in `libraries`, its identifier in `guids`
#   libraries    identifier in `guids`, locale, version, 16 bits with the length of the name << 2 | 1, the name
#   references   of classes to their interfaces: the interface (a place in `types`, or in `imports` + 1), flags, -1, next
#   hash         for each of 32 values the last identifier that has it, or -1
#   guids        identifier; what it is (place in `types`, in `imports` + 1, in `libraries` + 2); next of the same hash
use constant { TYPES => 0, IMPORTS => 1, LIBRARIES => 2, REFERENCES => 3, HASH => 4, GUIDS => 5, SEGMENTS => 15 };
use constant { TYPE_SIZE => 100, REFERENCE_SIZE => 16, GUID_SIZE => 24 };
use constant { CLASS => 5, BY_IDENTIFIER => 0x10000, IMPORTED => 1, LIBRARY => 2 };

sub expect {
    my ($holds, $file, $what) = @_;
    $holds or die "$file is not laid out as expected: $what\n";
}

sub number {
    my ($bytes, $offset) = @_;
    return unpack 'V', substr $bytes, $offset, 4;
}

# The hash table of these identifiers, and the identifiers with their chains.
sub hashed {
    my ($guids) = @_;
    my @last = (NOTHING) x 32;
    for (my $place = 0; $place < length $guids; $place += GUID_SIZE) {
        my $hash = 0;
        $hash ^= $_ for unpack 'v8', substr $guids, $place, 16;
        substr($guids, $place + 20, 4) = pack 'V', $last[$hash % 32];
        $last[$hash % 32] = $place;
    }
    return (pack('V*', @last), $guids);
}

sub read_library {
    my ($file) = @_;
    open my $in, '<:raw', $file or die "$file: $!\n";
    my $bytes = do { local $/; <$in> };
    expect(length $bytes > 84 && substr($bytes, 0, 8) eq SIGNATURE, $file, 'the signature');
    my %library = (file => $file, header => [unpack 'V21', $bytes]);
    my $count = $library{header}[TYPE_COUNT];
    expect(!($library{header}[FLAGS] & HELP_LIBRARY_FLAG), $file, 'a library of help texts');
    my $directory = 84 + 4 * $count;
    my $end = $directory + 16 * SEGMENTS;
    my @places = map { [unpack 'V2', substr $bytes, $directory + 16 * $_, 8] } 0 .. SEGMENTS - 1;
    my @order = sort { $places[$a][0] <=> $places[$b][0] } grep { $places[$_][0] != NOTHING } 0 .. SEGMENTS - 1;
    for my $segment (@order) {
        my ($position, $length) = @{$places[$segment]};
        expect($position == $end && $position + $length <= length $bytes, $file, "the place of segment $segment");
        $library{segments}[$segment] = substr $bytes, $position, $length;
        $end += $length;
    }
    expect(defined $library{segments}[$_], $file, "segment $_ is missing") for TYPES, HASH, GUIDS;
    $library{order} = \@order;
    $library{members} = substr $bytes, $end;
    $library{members_begin} = $end;
    expect(length $library{segments}[TYPES] == $count * TYPE_SIZE, $file, 'the types');
    for my $type (0 .. $count - 1) {
        expect(number($bytes, 84 + 4 * $type) == $type * TYPE_SIZE, $file, "the place of type $type");
        my $members = number($library{segments}[TYPES], $type * TYPE_SIZE + 4);
        expect($members >= $end && $members <= length $bytes, $file, "the members of type $type");
    }
    my ($hash, $guids) = hashed($library{segments}[GUIDS]);
    expect($hash eq $library{segments}[HASH] && $guids eq $library{segments}[GUIDS], $file, 'the hash table');
    return \%library;
}

sub write_library {
    my ($library, $file) = @_;
    my $segments = $library->{segments};
    my $types = $library->{header}[TYPE_COUNT];
    my $end = 84 + 4 * $types + 16 * SEGMENTS;
    my @directory = map { [NOTHING, 0] } 1 .. SEGMENTS;
    for my $segment (@{$library->{order}}) {
        $directory[$segment] = [$end, length $segments->[$segment]];
        $end += length $segments->[$segment];
    }
    for my $type (0 .. $types - 1) {
        my $field = \substr $segments->[TYPES], $type * TYPE_SIZE + 4, 4;
        $$field = pack 'V', number($$field, 0) + $end - $library->{members_begin};
    }
    open my $out, '>:raw', $file or die "$file: $!\n";
    print {$out} pack('V*', @{$library->{header}}, map { $_ * TYPE_SIZE } 0 .. $types - 1),
        (map { pack 'V4', @$_, NOTHING, 15 } @directory), @{$segments}[@{$library->{order}}], $library->{members};
    close $out or die "$file: $!\n";
}

# Where the reference to the second interface of the only class is. Both are the same interface still.
sub second_interface {
    my ($library) = @_;
    my ($types, $references) = @{$library->{segments}}[TYPES, REFERENCES];
    my @classes = grep { (number($types, $_) & 15) == CLASS }
        map { $_ * TYPE_SIZE } 0 .. $library->{header}[TYPE_COUNT] - 1;
    expect(@classes == 1, $library->{file}, 'one class');
    expect(unpack('v', substr $types, $classes[0] + 76, 2) == 2, $library->{file}, 'two interfaces in its class');
    my $first = number($types, $classes[0] + 84);
    my $second = number($references, $first + 12);
    expect(number($references, $first) == number($references, $second) && number($references, $second + 12) == NOTHING,
        $library->{file}, 'one interface twice in its class');
    return $second;
}

my ($draft, $other, $target) = @ARGV;
my $library = read_library($draft);
my $host = read_library($other);
expect($host->{header}[TYPE_COUNT] == 1, $other, 'one interface');
my $interface = $host->{segments}[TYPES];
my $guid = sub { substr $host->{segments}[GUIDS], $_[0], 16 };

my $segments = $library->{segments};
expect(defined $segments->[$_], $draft, "segment $_ is missing") for IMPORTS, LIBRARIES, REFERENCES;
my ($import, $file, $first_guid) = map { length $segments->[$_] } IMPORTS, LIBRARIES, GUIDS;
$segments->[GUIDS] .= $guid->($host->{header}[LIBRARY_GUID]) . pack('V2', $file | LIBRARY, NOTHING)
    . $guid->(number($interface, 44)) . pack('V2', $import | IMPORTED, NOTHING);
@{$segments}[HASH, GUIDS] = hashed($segments->[GUIDS]);

# The platform finds the library by identifier, version and locale; the name is its last resort.
my $name = basename($other);
my $entry = pack 'V3 v a*', $first_guid, @{$host->{header}}[LOCALE, VERSION], length($name) << 2 | 1, $name;
$segments->[LIBRARIES] .= $entry . 'W' x (-length($entry) % 4);
$segments->[IMPORTS] .= pack 'V3', (number($interface, 0) & 15) << 24 | BY_IDENTIFIER, $file, $first_guid + GUID_SIZE;
substr($segments->[REFERENCES], second_interface($library), 4) = pack 'V', $import | IMPORTED;
$library->{header}[IMPORT_COUNT]++;
write_library($library, $target);
