#!/bin/sh
# Installs Wine for 64-bit and 32-bit programs on Debian. Needs root.
set -eu
dpkg --add-architecture i386
apt-get update || echo "some package lists are out of date; going on with those there are" >&2

# Multi-arch packages must have one version in both architectures, and i386's can lag behind: for
# this one call each, with what else its source builds, is held to the newest version of both.
pins=$(mktemp)
trap 'rm -f "$pins"' EXIT
apt-cache depends --recurse --no-recommends --no-suggests --no-conflicts --no-breaks --no-replaces \
    --no-enhances wine32:i386 | sed -n 's/^\([a-z0-9].*\):i386$/\1:amd64 \1:i386/p' |
    xargs apt-cache show 2>/dev/null | awk '
        $1 == "Package:" { package = source = $2 }
        $1 == "Source:" { source = $2 }
        $1 == "Version:" { version = $2 }
        $1 == "Architecture:" { architecture = $2 }
        $0 == "" && architecture == "amd64" { amd64[package, version] = 1 }
        $0 == "" && architecture == "i386" {
            name[++n] = package; src[n] = source; number[n] = version
        }
        END {
            for (i = 1; i <= n; ++i)
                if (amd64[name[i], number[i]] && !pinned[name[i]]++)
                    printf "Package: src:%s\nPin: version %s\nPin-Priority: 1001\n\n", src[i], number[i]
        }' >"$pins"
DEBIAN_FRONTEND=noninteractive apt-get -o "Dir::Etc::Preferences=$pins" install -y \
    --no-install-recommends --allow-downgrades wine wine64 wine32:i386
