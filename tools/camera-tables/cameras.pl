# cameras.pl VERSION: prints the table of cameras from the camera collection of lensfun.
use strict;
use warnings;
use XML::LibXML;

my ($version) = @ARGV;

# A word that the EXIF maker of each camera contains. Makers that are not listed stand for
# themselves.
# No brand may contain another one: the table's order holds within a brand.
my @brands = (
    [ qr/^Asahi/       => 'Asahi' ],
    [ qr/^Casio/       => 'Casio' ],
    [ qr/Epson/i       => 'Epson' ],
    [ qr/^Fuji/        => 'Fuji' ],         # "FUJI PHOTO FILM CO., LTD.", "FUJIFILM"
    [ qr/Kodak/        => 'Kodak' ],
    [ qr/^LG/          => 'LG' ],
    [ qr/^Leica/       => 'Leica' ],
    [ qr/Minolta/      => 'Minolta' ],      # alone, and with Konica
    [ qr/^Nikon/       => 'Nikon' ],
    [ qr/^Olympus/     => 'Olympus' ],
    [ qr/^Pentax Corp/ => 'Pentax' ],
    [ qr/^Pentax/      => 'Pentax', 'Ricoh' ],    # the maker changed his name between two cameras
    [ qr/^Ricoh/       => 'Ricoh' ],
    [ qr/^Samsung/     => 'Samsung' ],
);

sub brands {
    my ($maker) = @_;
    for (@brands) {
        my ( $pattern, @names ) = @$_;
        return @names if $maker =~ $pattern;
    }
    return $maker;
}

# The name without the brand: "Canon EOS 5D" is EOS 5D.
sub bare_name {
    my ( $maker, $model ) = @_;
    my ($word) = $maker =~ /^(\w+)/;
    $model =~ s/^(?:\Q$word\E|Pentax|Kodak|Samsung) //i;
    $model =~ s/^(?:Phantom|Mavic) .*(?=FC\w+$)//;    # EXIF has the code alone
    return $model;
}

sub cell {
    my ($text) = @_;
    $text =~ s/^\s+|\s+$|[^ -~]//g;
    $text =~ tr/;#/,+/;
    return $text;
}

# Cameras that the collection lacks, here those that the name of another would take: brand, name,
# width and height of the sensor in mm, to about 2 %.
my @added = (
    [ 'Canon', 'EOS REBEL', 22.3, 14.9 ],    # by EOS R
    [ 'Canon', 'EOS R7',    22.3, 14.8 ],
    [ 'Canon', 'EOS R10',   22.3, 14.9 ],
    [ 'Canon', 'EOS R50',   22.3, 14.9 ],
    [ 'Canon', 'EOS R100',  22.3, 14.9 ],
    [ 'Nikon', 'Coolpix A1', 6.17, 4.55 ],    # A10 to A1000, by Coolpix A
    [ 'Nikon', 'Coolpix A3', 6.17, 4.55 ],
    [ 'Nikon', 'Coolpix A9', 6.17, 4.55 ],
    [ 'Ricoh', 'Pentax Q-S1', 7.44, 5.58 ],   # by Pentax Q
);

my ( %rows, %seen );

# Keeps a camera; one whose name the brand has already is another aspect ratio of it.
sub add {
    my ( $brand, $maker, $model, $factor ) = @_;
    my $bare = bare_name( $maker, cell($model) );
    return if $seen{ lc "$brand;$bare" }++;

    # A very short name would be found in too many: "Nikon D3" stays as it is.
    my $name = length $bare < 4 ? cell($model) : $bare;
    push @{ $rows{$brand} }, { bare => $bare, name => $name, factor => $factor };
}

for my $file ( sort glob '/usr/share/lensfun/version_1/*.xml' ) {
    for my $camera ( XML::LibXML->load_xml( location => $file )->findnodes('//camera') ) {
        my ( $maker, $model, $factor ) =
          map { $camera->findvalue($_) } 'maker[1]', 'model[1]', 'cropfactor';
        next if $maker eq 'Generic' || $model =~ /^35mm film/;
        die "$file: $model has no crop factor\n" unless $factor =~ /^\d+(\.\d+)?$/;
        add( cell($_), $maker, $model, $factor ) for brands($maker);
    }
}
for (@added) {
    my ( $brand, $name, $width, $height ) = @$_;
    my $factor = sqrt( ( 36**2 + 24**2 ) / ( $width**2 + $height**2 ) );
    add( $brand, $brand, $name, sprintf '%.3f', $factor );
}

print <<"END";
# Cameras: brand; name; the factor between the sensor and a frame of 36 by 24 mm, which is the ratio
# of their diagonals.
#
# A row is a camera's if its EXIF maker contains the brand and its EXIF model the name, regardless of
# case; the first such row counts. So within a brand the longest names come first, and no brand
# contains another. Blanks beside a separator belong to the cell.
#
# Made by scripts/camera-tables, which makes it anew; do not edit by hand. From the camera collection
# of the lensfun project, Debian package liblensfun-data-v1 $version, which is under the licence
# Creative Commons Attribution-ShareAlike 3.0, and so is this table. Changed: makers cut to the word
# that EXIF data contains, models to short names, rows put in order, entries left out that are no
# cameras or repeat a name, and some cameras added, with sensor sizes to about 2 %, that would be taken
# for others.
END
for my $brand ( sort { lc $a cmp lc $b } keys %rows ) {
    my @sorted = sort { length $b->{bare} <=> length $a->{bare} || $a->{name} cmp $b->{name} }
      @{ $rows{$brand} };
    print "$brand;$_->{name};$_->{factor}\n" for @sorted;
}
