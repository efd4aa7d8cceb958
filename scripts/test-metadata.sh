#!/usr/bin/env bash
# Makes a dozen pictures full of metadata, filters each into every format, and compares what exiftool reads field by field.
#   scripts/test-metadata.sh [FOLDER OF hymedian]
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-packages.sh test
program=$(realpath "${1:-build/test}")/hymedian
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
export HYMEDIAN_PREFERENCES=$folder/preferences LC_ALL=C.UTF-8
mkdir "$folder/in" "$folder/out"
cd "$folder/in"

# Writes a little-endian or big-endian TIFF, or the EXIF block of a JPEG, with tags that no tool writes.
write_raw() {
    perl - "$1" "$2" <<'PERL'
    my ($name, $kind) = @ARGV;
    my ($big, $exif) = ($kind =~ /big/, $kind =~ /exif/);
    my ($s, $l, $d) = $big ? ('n', 'N', 'd>') : ('v', 'V', 'd<');
    my %size = (1 => 1, 2 => 1, 3 => 2, 4 => 4, 5 => 8, 7 => 1, 12 => 8);
    # Lays out a directory at a place: [tag, type, bytes or code for a directory or maker's note].
    sub directory {
        my ($at, @entries) = @_;
        my ($table, $values) = (pack($s, scalar @entries), '');
        my $free = $at + 2 + 12 * @entries + 4;
        for (sort { $a->[0] <=> $b->[0] } @entries) {
            my ($tag, $type, $bytes) = @$_;
            my ($count, $field);
            if (ref $bytes) {
                my $inner = $bytes->($free + length $values);
                if ($type == 7) { ($bytes, $count) = ($inner, length $inner); }
                else { $count = 1; $field = pack($l, $free + length $values); $values .= $inner; }
            } else { $count = length($bytes) / $size{$type}; }
            if (!defined $field) {
                if (length $bytes <= 4) { $field = $bytes . "\0" x (4 - length $bytes); }
                else { $field = pack($l, $free + length $values); $values .= $bytes; }
            }
            $values .= "\0" if length($values) % 2;
            $table .= pack("$s$s$l", $tag, $type, $count) . $field;
        }
        return $table . pack($l, 0) . $values;
    }
    my $head = ($big ? 'MM' : 'II') . pack("$s$l", 42, 8);
    # Offsets of this maker's note count from the start of the file.
    my $note = sub { directory($_[0], [7, 2, "Firmware Version 1.0.0\0"], [9, 2, "A. Photographer\0"]) };
    my @photo = ([271, 2, "Canon\0"], [272, 2, "Canon EOS 5D\0"], [282, 5, pack("$l$l", 240, 1)],
        [283, 5, pack("$l$l", 240, 1)], [296, 3, pack($s, 2)], [274, 3, pack($s, 6)],
        [34665, 4, sub { directory($_[0], [36867, 2, "2019:05:06 07:08:09\0"], [33434, 5, pack("$l$l", 1, 250)],
            [37500, 7, $note]) }]);
    my $pixels = join '', map { chr(64 + $_ * 7 % 128) } 1 .. 24 * 18;
    my @storage = ([256, 3, pack($s, 24)], [257, 3, pack($s, 18)], [258, 3, pack($s, 8)], [259, 3, pack($s, 1)],
        [262, 3, pack($s, 1)], [273, 4, sub { '' }], [277, 3, pack($s, 1)], [278, 3, pack($s, 18)],
        [279, 4, pack($l, length $pixels)]);
    my %more = (
        photo => \@photo,
        geo => [[33550, 12, pack("${d}3", 0.5, 0.5, 0)], [33922, 12, pack("${d}6", 0, 0, 0, 440720, 3751320, 0)],
            [34735, 3, pack("${s}8", 1, 1, 0, 1, 1024, 0, 1, 1)], [42112, 2, "<GDALMetadata/>\0"],
            [42113, 2, "-9999\0"]],
        imagej => [[270, 2, "ImageJ=1.53t\nimages=1\nunit=\\u00B5m\nspacing=0.5\n\0"], [282, 5, pack("$l$l", 157, 10)],
            [283, 5, pack("$l$l", 157, 10)], [296, 3, pack($s, 1)], [50838, 4, pack("${l}2", 12, 4)],
            [50839, 1, "IJIJ" . "\1" x 12]],
        ome => [[270, 2, "<?xml version=\"1.0\"?><OME>\xC2\xB5m \xB5</OME>\0"], [282, 5, pack("$l$l", 31, 2)],
            [283, 5, pack("$l$l", 31, 2)], [305, 2, "OME Bio-Formats\0"]],
        bare => []);
    my ($which) = grep { $kind =~ /$_/ } keys %more;
    my @tags = @{$more{$which}};
    my $bytes = $exif ? $head . directory(8, @photo) : '';
    if (!$exif) {
        # The pixels come last; their place is known when the rest is laid out.
        my $length = length directory(8, @storage, @tags);
        $_->[2] = pack($l, 8 + $length) for grep { $_->[0] == 273 } @storage;
        $bytes = $head . directory(8, @storage, @tags) . $pixels;
    }
    open my $file, '>:raw', $name or die;
    print $file $bytes;
PERL
}

vips gaussnoise noise.v 24 18 --mean 128 --sigma 30
vips bandjoin "noise.v noise.v noise.v" rgb.v
vips cast rgb.v rgb8.v uchar
vips copy rgb8.v plain.v --interpretation srgb
for name in plain.jpg full.jpg canon.jpg motorola.jpg scan.png full.png plain.png camera.tif full.tif; do
    vips copy plain.v "${name}[strip]"
done
cwebp -quiet -lossless plain.png -o full.webp
rm ./*.v
profile=$(find /usr/share -iname 'srgb*.ic[cm]' 2>/dev/null | head -1)
fields=(-Make=Acme -Model=M1 -DateTimeOriginal='2020:01:02 03:04:05' -GPSLatitude=48.5 -GPSLatitudeRef=N
    -GPSLongitude=9.25 -GPSLongitudeRef=E -Artist='Ä. Nother' -Copyright='© me' -Software='Other 1.2'
    -ModifyDate='2021:02:03 04:05:06' -Orientation#=8 -XResolution=300.5 -YResolution=300.5 -ResolutionUnit=inches
    -ImageDescription=Described -UserComment='A comment' -XMP-dc:Title=Title -XMP-dc:Subject=one -XMP-dc:Subject=two)
iptc=(-IPTC:Caption-Abstract='A caption' -IPTC:Keywords=first -IPTC:Keywords=second -Photoshop:URL=http://example.org)
icc=(${profile:+"-icc_profile<=$profile"})
write() { exiftool -q -overwrite_original "$@"; }
write "${fields[@]}" "${iptc[@]}" "${icc[@]}" -Comment='A JPEG comment' full.jpg
write "${fields[@]}" "${icc[@]}" full.png full.webp
write -PNG:Comment='A PNG comment' -PNG:Title='A title' -Gamma=0.45455 -PixelsPerUnitX=11811 -PixelsPerUnitY=11811 \
    -PixelUnits=meters full.png
write -PixelsPerUnitX=11811 -PixelsPerUnitY=11811 -PixelUnits=meters scan.png
write "${fields[@]}" "${iptc[@]}" "${icc[@]}" full.tif
write "${fields[@]}" camera.tif
for kind in exif-photo:canon.jpg exif-photo-big:motorola.jpg; do
    write_raw block.exif "${kind%:*}"
    write "-exif<=block.exif" "${kind#*:}"
done
rm block.exif
for kind in photo photo-big geo geo-big imagej imagej-big ome bare; do write_raw "$kind.tif" "$kind"; done
write -XResolution=72 -YResolution=72 camera.tif

# What describes files, pixels and their storage, and not the picture.
storage='ExifTool|File|Directory|MIMEType|ExifByteOrder|(Exif)?Image(Width|Height|Size)|Megapixels|Encoding|BitsPer|Color(Comp|Type|Space)'
storage+='|YCbCr|Compression|Photometric|Strip|RowsPer|Planar|SamplesPer|Predictor|Tile|Subfile|OldSubfile|BitDepth|Filter|Interlace|VP8|WebP'
storage+='|Horizontal|Vertical|AlphaIs|SampleFormat|ExtraSamples|JFIFVersion|FillOrder|Flags|ThumbnailOffset|ThumbnailLength|SourceFile'
storage+='|Orientation_|ExifVersion|ComponentsConfiguration|FlashpixVersion|ProfileName|Warning|GPSPosition|MakerNoteByteOrder|CurrentIPTCDigest'
fields_of() { exiftool -a -u -s -s -n "$1" | { grep -aEv "^($storage)" || true; } | sort -u; }

failed=0
checked=0
# Directions in which a field has no place: input, output, and the fields.
exceptions='
full.jpg    tif|webp  Comment
plain.jpg   tif|webp|png  (X|Y)Resolution|ResolutionUnit
plain.png   jpg|tif|webp  PixelsPer|PixelUnits
full.png    jpg|tif|webp  Title|Comment|Gamma|PixelsPer|PixelUnits
scan.png    jpg|tif|webp  PixelsPer|PixelUnits
'
for input in *; do
    for suffix in jpg tif png webp; do
        output=../out/${input%.*}-${input##*.}.$suffix
        "$program" -q -f -r 1 "$input" -o "$output" || { echo "$input -> $suffix: failed"; failed=1; continue; }
        except=$(awk -v i="$input" -v s="$suffix" '$1 == i && s ~ "^(" $2 ")$" { print $3 }' <<<"$exceptions")
        fields_of "$input" >../before
        fields_of "$output" >../after
        checked=$((checked + $(wc -l <../before)))
        if missing=$(comm -23 ../before ../after | grep -aEv "^(${except:-nothing})") && [ -n "$missing" ]; then
            echo "$input -> $suffix lost:"; echo "$missing"; failed=1
        fi
        # Within a format nothing may come in addition.
        if [ "${input##*.}" = "$suffix" ] && extra=$(comm -13 ../before ../after) && [ -n "$extra" ]; then
            echo "$input -> $suffix gained:"; echo "$extra"; failed=1
        fi
    done
done
expect() { [ "$2" = "$3" ] || { echo "$1: '$2' instead of '$3'"; failed=1; }; }
of() { exiftool -s3 -n -a "$1" ../out/"$2" | tr '\n' ' '; }
expect "a JPEG without EXIF" "$(of -EXIF:all plain-jpg.jpg)" ""
expect "a TIFF without resolution" "$(of -XResolution bare-tif.tif)" ""
expect "a TIFF without unit" "$(of -ResolutionUnit imagej-tif.tif)" "1 "
expect "PNG's resolution in TIFF" "$(of -XResolution scan-png.tif)$(of -ResolutionUnit scan-png.tif)" "300 2 "
expect "PNG's resolution in JPEG" "$(of -XResolution scan-png.jpg)$(of -ResolutionUnit scan-png.jpg)" "300 1 "
expect "TIFF's resolution in PNG" "$(of -PixelsPerUnitX full-tif.png)" "11831 "
expect "PNG's comment in JPEG" "$(of -Comment full-png.jpg)" "A PNG comment "
expect "JPEG's comment in PNG" "$(of -Comment full-jpg.png)" "A JPEG comment "
expect "eXIf chunks" "$(grep -c eXIf ../out/full-png.png)" 1
"$program" -q -f -r 1 --stamp full.jpg -o ../out/stamped.jpg
expect "a stamp" "$(of -Software stamped.jpg)" "$("$program" --version) "
expect "what a stamp leaves" "$(of -Model stamped.jpg)$(of -Comment stamped.jpg)" "M1 A JPEG comment "
for output in ../out/*.tif; do tiffinfo "$output" >/dev/null 2>../said || { echo "$output:"; cat ../said; failed=1; }; done
echo "$(ls | wc -l) pictures, 4 formats, $checked fields compared"
exit $failed
