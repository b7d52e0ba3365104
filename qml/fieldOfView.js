.pragma library

// Limits of the field of view, in degrees. The projections are named by the values of
// OrbShaderCodeBuilder's enumeration, given as an object.

var minimum = 10
var initial = 90

function maximum(projection, projections) {
    switch (projection) {
    case projections.FISHEYE:
    case projections.LITTLE_PLANET:
        return 360
    case projections.RECTILINEAR:
        return 130
    default:
        return 180
    }
}

// The field of view to use when `fov` is asked for. Beyond the limits it is the nearer limit, or with
// `reset` the initial one.
function allowed(fov, projection, projections, reset) {
    var largest = maximum(projection, projections)
    if (fov >= minimum && fov <= largest)
        return fov
    if (reset)
        return initial
    return fov < minimum ? minimum : largest
}
