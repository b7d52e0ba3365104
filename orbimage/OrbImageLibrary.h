#pragma once

#include <QString>

class ImageDefCache;
class TemporaryStore;
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

/// Where the pixels lie that memory has no room for. The first call removes what copies of the
/// program that crashed have left. Any thread.
TemporaryStore &temporaryStore();

/// What users were not told of when images were opened, a line a message; the last 64 KiB. Any
/// thread.
QString gflLastMessages();
void appendMessage(const QString &message);

} // namespace OrbImageLibrary
