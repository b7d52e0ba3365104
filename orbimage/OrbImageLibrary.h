#pragma once

#include <QString>

class ImageDefCache;
struct ImageLoadOptions;

/// Start and stop of the image library and what it has one of. Main thread, after the application
/// exists.
namespace OrbImageLibrary {

/// Makes the library ready: its tables under the search path "Data", the layer that reads files,
/// and all below.
void start();

/// Ends it; descriptions are gone afterwards.
void stop();

/// Null before the start and after the stop.
ImageDefCache *cache();

/// How images are described; to be changed while none is opened.
ImageLoadOptions &loadOptions();

/// What users were not told of when images were opened, a line a message; the last 64 KiB. Any
/// thread.
QString gflLastMessages();
void appendMessage(const QString &message);

} // namespace OrbImageLibrary
