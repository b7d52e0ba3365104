.pragma library

// Stored settings as the values that a panel shows. The file they come from gives texts, or lists
// of texts where there is a comma, and may say anything.

function isOn(stored) {
    return ["", "0", "false"].indexOf(String(stored).toLowerCase()) < 0
}

// A whole number from 0 to `largest`, else `initial`.
function wholeNumber(stored, largest, initial) {
    return /^[0-9]+$/.test(stored) && Number(stored) <= largest ? Number(stored) | 0 : initial
}

// The four numbers of a dotted address as texts, each empty where there is none from 0 to 255.
function addressFields(stored) {
    var parts = String(stored).split(".")
    return [0, 1, 2, 3].map(function(i) { return String(wholeNumber(parts[i], 255, "")) })
}

// An empty field counts as 0.
function address(fields) {
    return fields.map(Number).join(".")
}
