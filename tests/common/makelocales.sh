#!/bin/sh
# Makes the locales that tests convert text in: makelocales.sh FOLDER
set -e
folder=$1
mkdir -p "$folder"

# make LOCALE ENCODING [CHARACTER-MAP]
make() {
    # Warns about encodings that do not extend ASCII, and then makes them all the same.
    localedef --force --no-archive -i "$1" -f "${3:-$2}" "$folder/$1.$2" 2>/dev/null || true
    test -f "$folder/$1.$2/LC_CTYPE"
}

make de_DE ISO-8859-1
make de_DE UTF-8
make ja_JP EUC-JP
make ja_JP SHIFT_JIS
make he_IL CP1255
make zh_HK BIG5-HKSCS
make en_US IBM037

# Latin-1 under a name that no converter knows.
zcat /usr/share/i18n/charmaps/ISO-8859-1.gz |
    sed 's/<code_set_name>.*/<code_set_name> KXQTS-UNKNOWN/; /alias/d' > "$folder/charmap"
make de_DE KXQTS-UNKNOWN "$folder/charmap"
