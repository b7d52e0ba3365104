#include "ThirdParty.h"

#include <QStringList>

namespace {

struct Notice
{
    const char *name;
    const char *text;
};

constexpr Notice kNotices[] = {
    {"LibVLC ",
     "Copyright (C) the VideoLAN project and its authors.\n"
     "Licensed under the GNU Lesser General Public License, version 2.1 or later.\n"
     "Its text stands in /usr/share/common-licenses/LGPL-2.1."},
    {"Qt 5 ",
     "Copyright (C) The Qt Company Ltd. and other contributors.\n"
     "Licensed under the GNU Lesser General Public License, version 3.\n"
     "Its text stands in /usr/share/common-licenses/LGPL-3."},
    {"GStreamer ",
     "Copyright (C) the GStreamer project and its authors.\n"
     "Licensed under the GNU Lesser General Public License, version 2.1 or later.\n"
     "Its text stands in /usr/share/common-licenses/LGPL-2.1."},
    {"Table of cameras ",
     "From the camera collection of the lensfun project, by its contributors; changed.\n"
     "Licensed under Creative Commons Attribution-ShareAlike 3.0."},
    {"Table of lenses ",
     "Numbers and names of ExifTool, by Phil Harvey; changed.\n"
     "Licensed as Perl itself: GNU General Public License or Artistic License.\n"
     "Their texts stand in /usr/share/common-licenses/GPL-1 and Artistic."},
};

} // namespace

QString thirdPartyNotices()
{
    const QString stars(40, QLatin1Char('*'));
    QStringList blocks;
    for (const Notice &notice : kNotices)
        blocks += QStringLiteral("%1\n* %2\n%1\n\n%3\n")
                      .arg(stars, QString::fromUtf8(notice.name), QString::fromUtf8(notice.text));
    return blocks.join(QLatin1Char('\n'));
}
