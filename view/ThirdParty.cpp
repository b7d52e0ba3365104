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
    {"Exiv2 ",
     "Copyright (C) 2004-2022 Exiv2 authors.\n"
     "Licensed under the GNU General Public License, version 2 or later.\n"
     "Its text stands in /usr/share/common-licenses/GPL-2."},
    {"LibTIFF ",
     "Copyright (c) 1988-1997 Sam Leffler.\n"
     "Copyright (c) 1991-1997 Silicon Graphics, Inc.\n"
     "Its licence stands in /usr/share/doc/libtiff6/copyright."},
    {"libpng ",
     "Copyright (c) 1995-2022 The PNG Reference Library Authors.\n"
     "Its licence stands in /usr/share/doc/libpng16-16/copyright."},
    {"libjpeg-turbo ",
     "This software is based in part on the work of the Independent JPEG Group.\n"
     "Its licences stand in /usr/share/doc/libjpeg62-turbo/copyright."},
    {"OpenHMD ",
     "Copyright (C) 2013 Fredrik Hultin and Jakob Bornecrantz.\n"
     "Licensed under the Boost Software License, version 1.0.\n"
     "Its text stands in /usr/share/doc/libopenhmd0/copyright."},
    {"oneAPI Threading Building Blocks ",
     "Copyright (c) 2005-2022 Intel Corporation.\n"
     "Licensed under the Apache License, version 2.0.\n"
     "Its text stands in /usr/share/common-licenses/Apache-2.0."},
    {"Breakpad ",
     "Copyright 2006 Google LLC, and others for parts of it.\n"
     "Licensed under a BSD licence of three clauses. Its text stands in LICENSE of its sources,\n"
     "https://chromium.googlesource.com/breakpad/breakpad."},
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
