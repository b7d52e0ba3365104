#pragma once

#include <QString>

/// Text with markup that a stranger wrote, fit for a view of rich text: of its tags those of plain
/// structure and emphasis stay, without their attributes, and links to web pages. Nothing in the
/// result makes a view load anything: no pictures, style sheets or other addresses. What is no tag
/// stands as the text that it is.
QString safeRichText(const QString &markup);
