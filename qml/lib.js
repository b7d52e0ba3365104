.pragma library

function twoDigits(number) {
    return number < 10 ? "0" + number : "" + number
}

// A time in milliseconds as "mm:ss", from an hour on as "h:mm:ss".
function formatTime(time) {
    var seconds = Math.round(time / 1000)
    var minutes = Math.floor(seconds / 60)
    var hours = Math.floor(minutes / 60)
    return (hours === 0 ? "" : hours + ":") + twoDigits(minutes % 60) + ":" + twoDigits(seconds % 60)
}

// A text for a label that would take what looks like markup for it.
function asPlainText(text) {
    if (text.indexOf("<") < 0)
        return text
    return "<p>" + text.replace(/&/g, "&amp;").replace(/</g, "&lt;").replace(/\n/g, "<br>") + "</p>"
}

// A text with the passwords of the addresses in it left out.
function withoutPasswords(text) {
    return text.toString().replace(/(:\/\/[^\/\s:@]*):[^\/\s]*@/g, "$1@")
}
