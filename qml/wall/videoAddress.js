.pragma library

// What a hosting service lists of a video may be anything.

// The address to open: the source, or else that of the last preset; empty if there is none.
function ofVideo(source, presets) {
    if (source)
        return source
    var last = presets.length > 0 ? presets[presets.length - 1] : null
    return last && typeof last.url === "string" ? last.url : ""
}

// The address of a picture on the web, else empty: a service has no business with local files.
function ofPicture(link) {
    return /^https?:\/\//i.test(link) ? link : ""
}
