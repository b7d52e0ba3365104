#pragma once

/// Start and stop of the image library. Main thread, after the application exists.
namespace OrbImageLibrary {

/// Makes the library's tables available under the search path "Data".
void start();

void stop();

} // namespace OrbImageLibrary
