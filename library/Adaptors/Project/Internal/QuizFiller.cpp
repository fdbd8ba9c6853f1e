#include "Adaptors/Project/Internal/QuizFiller.h"

#include <QByteArray>

using nlohmann::json;
using Serialize::Json::FlatObject;

namespace Project::Internal {
namespace {

/// The text of the filler clip, as HTML from Qt's text engine.
constexpr char fillerText[] =
    "<!DOCTYPE HTML PUBLIC \"-//W3C//DTD HTML 4.0//EN\" \"http://www.w3.org/TR/REC-html40/strict.dtd\">\n"
    "<html><head><meta name=\"qrichtext\" content=\"1\" /><style type=\"text/css\">\n"
    "p, li { white-space: pre-wrap; }\n"
    "</style></head><body style=\" font-family:'Verdana'; font-size:100pt; font-weight:400; "
    "font-style:normal;\" bgcolor=\"transparent\">\n"
    "<p align=\"center\" style=\" margin-top:0px; margin-bottom:0px; margin-left:0px; margin-right:0px; "
    "-qt-block-indent:0; text-indent:0px;\"><span style=\" color:#ffffff; "
    "background-color:transparent;\">Quiz</span></p></body></html>"
    "<!-- background-enabled:0; background-color:4278190080; -->";

} // namespace

json* createFillerClip(FlatObject& document, unsigned long long timelineId, const MTime& duration) {
    json* clip = document.createObject("Timeline::Clip");
    json* info = document.createObject("Timeline::CollectionItemInfo");
    json* preset = document.createObject("Overlay::Preset");
    json* item = document.createObject("Overlay::Item");
    json* shadow = document.createObject("Overlay::DropShadow");
    json* outline = document.createObject("Types::Pen");
    json* transform = document.createObject("Types::Transform");
    info->update({
        {"collectionId", ""},
        {"packageId", ""},
        {"uniqueId", ""},
    });
    shadow->update({
        {"blurRadius", 1},
        {"color", 3024043839U},
        {"enabled", false},
        {"offsetX", 4},
        {"offsetY", 4},
    });
    outline->update({
        {"color", 4278190080U},
        {"enabled", false},
        {"width", 0},
    });
    transform->update({
        {"m11", 0.625},
        {"m12", 0},
        {"m13", 0},
        {"m21", 0},
        {"m22", 0.625},
        {"m23", 0},
        {"m31", 343.0},
        {"m32", 278.0},
        {"m33", 1.0},
    });
    item->update({
        {"arcRadius", 0.0},
        {"dropShadow", *shadow},
        {"editTime", 1.0},
        {"editable", true},
        {"encodedText", QByteArray(fillerText).toBase64().toStdString()},
        {"features", 0},
        {"from", 0.0},
        {"intro", 0.0},
        {"outline", *outline},
        {"outro", 0.0},
        {"resourcesInfo", json::array()},
        {"scriptRole", ""},
        {"textWidth", 990.0},
        {"to", 1.0},
        {"transform", *transform},
        {"type", 1},
    });
    preset->update({
        {"description", "SimpleText"},
        {"fontsDir", ""},
        {"items", json::array({*item})},
        {"resourcePath", ""},
        {"scriptId", "TitleStandard"},
        {"scriptSpeed", 1.0},
        {"sourceDuration", duration.toMs()},
        {"tag", "SimpleText"},
        {"type", 1},
    });
    clip->update({
        {"broken", false},
        {"collectionItemInfo", *info},
        {"cropEnvelope", nullptr},
        {"effects", json::array()},
        {"enabled", true},
        {"file", nullptr},
        {"labels", json::array()},
        {"mediaTrack", 0},
        {"motionTrackings", json::array()},
        {"moveEnvelope", nullptr},
        {"name", "SimpleText"},
        {"nestedTimeline", nullptr},
        {"overlay", *preset},
        {"quiz", nullptr},
        {"rhythm", nullptr},
        {"sourceDuration", duration.toMs()},
        {"stabilization", nullptr},
        {"timeline", document.createRef(timelineId)},
        {"type", 4},
        {"unlimitedDuration", true},
        {"volume", 100},
        {"volumeEnvelope", nullptr},
    });
    return clip;
}

json* createFillerTiming(FlatObject& document, const MTime& start, const MTime& duration) {
    json* timing = document.createObject("Timeline::ClipTiming");
    // Quirk: times are the raw counts of MTime here, but milliseconds in the clip and its preset. "Duraion"
    // is the spelling of the format.
    timing->update({
        {"duration", duration.count()},
        {"fadeInDuraion", 0},
        {"fadeOutDuraion", 0},
        {"reversed", false},
        {"sourceDuration", duration.count()},
        {"sourcePosition", 0},
        {"speedCompensated", false},
        {"timestamp", start.count()},
        {"timingMode", 0},
        {"trackLevel", 0},
        {"transitionIn", 0},
        {"transitionOut", 0},
    });
    return timing;
}

} // namespace Project::Internal
