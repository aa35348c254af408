#include "JsonOutput.h"

#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>

namespace {

// Collects text and hands it on in pieces, since vectors may be long.
class JsonWriter {
public:
    ~JsonWriter() { writeOut(buffer_); }

    void raw(std::string_view text) {
        buffer_ += text;
        if (buffer_.size() >= pieceBytes) flush();
    }
    void string(std::string_view text) { raw(jsonString(text)); }
    void number(double value) {
        if (!std::isfinite(value)) return raw(std::isnan(value) ? "\"nan\"" : value > 0 ? "\"inf\"" : "\"-inf\"");
        char text[32];
        auto const end = std::to_chars(text, text + sizeof text, value, std::chars_format::general, 17).ptr;
        raw({text, static_cast<std::size_t>(end - text)});
    }
    // `item(i)` for each of n, in brackets and with commas.
    template <class Item> void array(std::int64_t n, Item const & item) {
        raw("[");
        for (std::int64_t i = 0; i < n; ++i) {
            if (i > 0) raw(",");
            item(i);
        }
        raw("]");
    }

private:
    static constexpr std::size_t pieceBytes = 1 << 16;

    void flush() {
        writeOut(buffer_);
        buffer_.clear();
    }

    std::string buffer_;
};

char const * typeName(VD_type type) {
    return type == VD_COMPLEX ? "complex" : type == VD_STRING ? "string" : "real";
}

char const * boolText(bool value) {
    return value ? "true" : "false";
}

void writeElement(JsonWriter & json, NamedVector const & vector, std::int64_t i, std::int64_t division) {
    if (vector.isString()) {
        char const * text = vector.getString(i, division);
        return json.string(text != nullptr ? text : "");
    }
    if (vector.isReal()) return json.number(vector.getReal(i, division));
    json.raw("[");
    json.number(vector.getReal(i, division));
    json.raw(",");
    json.number(vector.getImag(i, division));
    json.raw("]");
}

void writeDivisions(JsonWriter & json, NamedVector const & vector) {
    json.raw(",\"divisions\":");
    json.array(vector.numDivisions(), [&](std::int64_t division) {
        json.array(vector.length(division), [&](std::int64_t i) { writeElement(json, vector, i, division); });
    });
}

void writeReference(JsonWriter & json, NamedVector const & reference) {
    json.raw(",\"ref\":");
    if (reference.totalLength() == 0) return json.raw("null");
    json.raw("{\"name\":");
    json.string(reference.name());
    json.raw(std::string(",\"type\":\"") + typeName(reference.type()) + "\"");
    json.raw(",\"physType\":" + std::to_string(reference.physType()));
    writeDivisions(json, reference);
    json.raw("}");
}

void writeLabels(JsonWriter & json, NamedVector const & vector) {
    NameArray labels;
    vector.divisionLabels(&labels);
    if (labels.size() == 1 && labels[0].empty()) labels.clear();
    json.raw(",\"labels\":");
    json.array(static_cast<std::int64_t>(labels.size()),
               [&](std::int64_t i) { json.string(labels[static_cast<std::size_t>(i)]); });
}

void writeValue(JsonWriter & json, XYVector const & vector) {
    json.raw("{\"name\":");
    json.string(vector.name());
    json.raw(std::string(",\"type\":\"") + typeName(vector.type()) + "\"");
    json.raw(",\"physType\":" + std::to_string(vector.physType()));
    json.raw(",\"unit\":");
    json.string(sp_GetPhysTypeUnit(vector.physType()));
    json.raw(std::string(",\"alias\":") + boolText(vec_IsAlias(&vector)));
    json.raw(std::string(",\"multiple\":") + boolText(vector.isMultiple()));
    writeLabels(json, vector);
    writeDivisions(json, vector);
    writeReference(json, vector.ref);
    json.raw("}");
}

void writeMessages(JsonWriter & json, std::vector<RecordedMessages::Message> const & messages) {
    json.raw(",\"messages\":");
    json.array(static_cast<std::int64_t>(messages.size()), [&](std::int64_t i) {
        auto const & message = messages[static_cast<std::size_t>(i)];
        json.raw(std::string("{\"level\":\"") + levelName(message.level) + "\",\"text\":");
        json.string(message.text);
        json.raw("}");
    });
}

} // namespace

std::string jsonString(std::string_view text) {
    using nlohmann::json;
    return json(text).dump(-1, ' ', false, json::error_handler_t::replace);
}

void writeJson(std::string const & expression, Evaluation const & evaluation, RecordedMessages const & messages) {
    JsonWriter json;
    auto const & values = evaluation.values();
    json.raw("{\"expr\":");
    json.string(expression);
    json.raw(std::string(",\"ok\":") + boolText(evaluation.ok()));
    json.raw(",\"code\":" + std::to_string(evaluation.code()));
    writeMessages(json, messages.list());
    json.raw(",\"values\":");
    json.array(static_cast<std::int64_t>(values.size()),
               [&](std::int64_t i) { writeValue(json, *values[static_cast<std::size_t>(i)]); });
    json.raw("}\n");
}
