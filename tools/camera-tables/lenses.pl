# lenses.pl LENSFUN-VERSION EXIFTOOL-VERSION: prints the table of lenses from the lens numbers that
# ExifTool knows.
use strict;
use warnings;
use Image::ExifTool;
use Image::ExifTool::Canon;
use Image::ExifTool::Minolta;
use Image::ExifTool::Nikon;
use Image::ExifTool::Olympus;
use Image::ExifTool::Pentax;
use Image::ExifTool::Samsung;
use Image::ExifTool::Sigma;
use Image::ExifTool::Sony;
use XML::LibXML;

my ( $lensfun, $exiftool ) = @ARGV;

# Each kind of key as the id of the table, of a fixed width for each maker; nothing for a key that is
# none.
sub number {
    return $_[0] =~ /^\d{1,5}$/ ? sprintf '%05d', $_[0] : ();
}

sub pair {
    return $_[0] =~ /^(\d+) (\d+)$/ ? sprintf '%02d %03d', $1, $2 : ();
}

sub hex_triple {
    return $_[0] =~ /^[\dA-F]( [\dA-F]{2}){2}$/ ? $_[0] : ();
}

sub nikon {
    my @bytes = map { hex } split / /, $_[0];
    return () unless @bytes == 8 && $bytes[3];
    my ( $number, undef, @codes ) = @bytes;
    my @focal    = map { sprintf '%.0f', 5 * 2**( $_ / 24 ) } @codes[ 0, 1 ];
    my @aperture = map { sprintf '%.1f', 2**( $_ / 24 ) } @codes[ 2, 3 ];
    return "@focal $number @aperture";
}

my %canon   = %Image::ExifTool::Canon::canonLensTypes;
my %minolta = %Image::ExifTool::Minolta::minoltaLensTypes;
my %pentax  = %Image::ExifTool::Pentax::pentaxLensTypes;
my %olympus = %{ $Image::ExifTool::Olympus::Equipment{0x201}{PrintConv} };

# Brand, ids, tables. A brand is a part of the EXIF maker; no maker contains two of them.
my @tables = (
    [ 'Canon',                 \&number,     \%canon ],
    [ 'Minolta',               \&number,     \%minolta ],
    [ 'Nikon',                 \&nikon,      \%Image::ExifTool::Nikon::nikonLensIDs ],
    [ 'Nikon',                 \&number,     $Image::ExifTool::Nikon::LensData0800{48}{PrintConv} ],
    [ 'Olympus',               \&hex_triple, \%olympus ],
    [ 'OM Digital',            \&hex_triple, \%olympus ],
    [ 'Pentax',                \&pair,       \%pentax ],
    [ 'Ricoh Imaging Company', \&pair,       \%pentax ],
    [ 'Samsung',               \&number,     \%Image::ExifTool::Samsung::samsungLensTypes ],
    [ 'Sigma',                 \&number,     \%Image::ExifTool::Sigma::sigmaLensTypes ],
    [ 'Sony',                  \&number,     \%Image::ExifTool::Sony::sonyLensTypes ],
    [ 'Sony',                  \&number,     \%Image::ExifTool::Sony::sonyLensTypes2 ],
);

# A name for comparison.
sub bare {
    return lc $_[0] =~ s/[^A-Za-z0-9]//gr;
}

my %fisheyes;
for my $file ( glob '/usr/share/lensfun/version_1/*.xml' ) {
    for my $lens ( XML::LibXML->load_xml( location => $file )->findnodes('//lens[type]') ) {
        next unless $lens->findvalue('type') =~ /fisheye|equisolid|stereographic|orthographic/;
        $fisheyes{ bare( $_->textContent ) } = 1 for $lens->findnodes('model');
    }
}

sub type {
    my ($name) = @_;
    return 1 if $name =~ /fish-?eye/i || $fisheyes{ bare($name) };
    return 2 if $name =~ /\bTS-E\b|\bT-S\b|\bPC(-E)? (Micro[- ])?Nikkor|\bTilt|\bShift/i;
    return 0;
}

sub cell {
    my ($text) = @_;
    $text =~ s/[^ -~]//g;
    $text =~ tr/;#/,+/;
    return $text;
}

my %rows;
for (@tables) {
    my ( $brand, $id_of, $names ) = @$_;
    for my $key ( sort keys %$names ) {
        my $name = $names->{$key};
        next if ref $name || $name !~ m{\dmm|f/\d}i;    # no lens, but an adapter or a remark
        my ($id) = $id_of->( $key =~ s/\.\d+$//r );     # lenses that share a number are counted
        $rows{$brand}{$id}{ type($name) }{ cell($name) } = 1 if defined $id;
    }
}

print <<"END";
# Lenses: id; brand of the camera system; name; type: 0 standard, 1 fisheye, 2 tilt/shift. A missing
# type is 0.
#
# A row is a lens's if the EXIF maker contains the brand and the row's id contains the lens id,
# regardless of case. More than one such row means that the type is not known. A part of an id would
# match too, so that all ids of a brand have the same width, or the same count of numbers, and none is
# contained in another; the lens id that is asked for has to be written in the same way:
#
#   Canon, Minolta, Samsung, Sigma   the lens number, five digits with leading zeros: 00490
#   Sony                             so also; the lens number of the E mount where the camera has one
#   Nikon, F mount                   five numbers: shortest and longest focal length in whole mm, the
#                                    lens number, the largest apertures at both: 8 8 38 4.0 4.0. From
#                                    the codes c: focal length 5 * 2^(c/24), aperture 2^(c/24)
#   Nikon, Z mount                   the lens number, five digits: 00013
#   Olympus, OM Digital              maker, model and sub-model, hexadecimal: 0 06 01
#   Pentax, Ricoh                    series and model, two and three digits: 03 247
#
# Lenses of one type that share an id have one row, their first names divided by " / "; lenses of
# several types have a row for each type, so that the type is not known.
# Blanks beside a separator belong to the cell.
#
# Made by scripts/camera-tables, which makes it anew; do not edit by hand. The numbers and names are
# those of ExifTool by Phil Harvey, Debian package libimage-exiftool-perl $exiftool, under the same
# terms as Perl itself: the GNU General Public License or the Artistic License; so is this table. That
# a lens is a fisheye was seen from its name, or from the lens collection of the lensfun project,
# Debian package liblensfun-data-v1 $lensfun (Creative Commons Attribution-ShareAlike 3.0).
END
for my $brand ( sort keys %rows ) {
    for my $id ( sort keys %{ $rows{$brand} } ) {
        my $types = $rows{$brand}{$id};
        for my $type ( sort keys %$types ) {
            my @names = sort keys %{ $types->{$type} };
            my $more  = @names - 3;
            my $name  = join ' / ', @names > 3 ? ( @names[ 0 .. 2 ], "$more more" ) : @names;
            print "$id;$brand;$name;$type\n";
        }
    }
}
