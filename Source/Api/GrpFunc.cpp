// Functions that ask about groups and collections.

#include "Evaluation/FunctionTimers.h"
#include "Funcs/FunctionFamily.h"
#include "Funcs/Waveform.h"
#include "Groups/GroupDataFile.h"
#include "Groups/GroupStore.h"
#include "Vectors/DivisionLabels.h"

#include <algorithm>
#include <cmath>

namespace {

using Texts = std::vector<std::string>;

std::string stringOf(YString const & text) {
    return std::string(text.view());
}

// The group that a string argument names; the current one when it is empty or missing, null when there is none.
Group * groupOf(FuncArgs const & args, int argument) {
    return findGroupOrCurrent(textOf(args, argument));
}

// Newest first, without local contexts.
template <class Text> Texts ofShownGroups(Text const & text) {
    Texts texts;
    forEachGroup([&](Group & group) {
        if (!group.isLocal()) texts.push_back(stringOf(text(group)));
    });
    return texts;
}

FUNC_ERROR groups(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    std::string_view const what = textOf(args, 0);
    YString Group::*const field = equalNoCase(what, "Title")  ? &Group::title
                                  : equalNoCase(what, "Date") ? &Group::date
                                                              : &Group::name;
    giveStrings(result, ofShownGroups([field](Group const & group) { return group.*field; }));
    return FUNC_OK;
}

FUNC_ERROR getGroupInfo(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    Group const * const group = groupOf(args, 0);
    if (group == nullptr) return FUNC_OK;
    GroupInfo info;
    vec_GetGroupInfo(group->name, &info);
    giveStrings(result, {stringOf(info.dataFile), stringOf(info.date), stringOf(info.title), stringOf(group->name),
                         info.keep ? "keep" : "nokeep"});
    return FUNC_OK;
}

FUNC_ERROR getPostProcessScripts(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    YArray<YString> scripts;
    vec_GetPostProc(YString(textOf(args, 0)), &scripts);
    Texts texts;
    for (YString const & script : scripts) texts.push_back(stringOf(script));
    giveStrings(result, texts);
    return FUNC_OK;
}

// --- vectors of a group

bool isOfKind(dvec const & vector, std::string_view kind) {
    if (kind.empty()) return true;
    if (equalNoCase(kind, "real")) return vector.isReal();
    if (equalNoCase(kind, "complex")) return vector.isComplex();
    if (equalNoCase(kind, "string")) return vector.isString() && !vector.isAlias();
    if (equalNoCase(kind, "alias")) return vector.isAlias();
    return equalNoCase(sp_GetPhysTypeName(vector.physType()).view(), kind);
}

FUNC_ERROR vectorsInGroup(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    Group * const group = groupOf(args, 0);
    if (group == nullptr) return FUNC_OK;
    std::string_view const kind = textOf(args, 1);
    Texts names;
    group->forEachVector([&](dvec const & vector) {
        if (isOfKind(vector, kind)) names.push_back(stringOf(vector.name()));
    });
    giveStrings(result, names);
    return FUNC_OK;
}

bool isCollated(FuncArgs const & args, dvec const & vector) {
    if (vector.isAlias() || vector.isString()) return false;
    return args.stringData(2) == nullptr || hasWord(args, 2, vector.name().view());
}

FUNC_ERROR collateGroup(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    Group * const group = groupOf(args, 0);
    if (group == nullptr) return FUNC_OK;
    double const start = std::max(std::floor(numberOr(args, 1, 0)), 0.0);
    std::vector<double> positions;
    double position = 0;
    group->forEachVector([&](dvec const & vector) {
        if (isCollated(args, vector)) positions.push_back(position + start);
        ++position;
    });
    if (positions.empty()) return FUNC_OK;
    auto const n = static_cast<std::int64_t>(positions.size());
    std::copy(positions.begin(), positions.end(), result.makeReal(n, ALLOC_HINT, n));
    return FUNC_OK;
}

// --- collections

FUNC_ERROR collectionName(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    Group const * group = groupOf(args, 0);
    if (group == nullptr) group = nameSpace().current;
    if (group != nullptr) giveStrings(result, {stringOf(group->collection)});
    return FUNC_OK;
}

FUNC_ERROR groupsInCollection(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    std::string_view const collection = textOf(args, 0);
    Texts names;
    forEachGroup([&](Group & group) {
        if (!collection.empty() && equalNoCase(group.collection, collection)) names.push_back(stringOf(group.name));
    });
    std::reverse(names.begin(), names.end());
    giveStrings(result, names);
    return FUNC_OK;
}

FUNC_ERROR makeCollection(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    bool const isNew = vec_OpenCollection(YString(textOf(args, 0)), hasWord(args, 1, "multiple")) == VEC_OK;
    giveNumber(result, isNew ? 1.0 : 0.0, PT_NONE);
    return FUNC_OK;
}

// --- steps: the labels of divisions, each with a part for each nested sweep

void giveParameters(FuncResult & result, NameArray const & labels) {
    if (labels.empty()) return;
    Texts names;
    for (DivisionLabelPart & part : parseDivisionLabel(labels.front().view())) names.push_back(std::move(part.name));
    giveStrings(result, names);
}

void giveValues(FuncResult & result, NameArray const & labels, std::int64_t sweep) {
    std::vector<double> values;
    PhysType physType = PT_UNKNOWN;
    for (YString const & label : labels) {
        auto const parts = parseDivisionLabel(label.view());
        if (sweep < 0 || sweep >= static_cast<std::int64_t>(parts.size())) return;
        DivisionLabelPart const & part = parts[static_cast<std::size_t>(sweep)];
        if (!part.hasValue) return;
        values.push_back(part.value);
        physType = part.physType;
    }
    if (values.empty()) return;
    auto const n = static_cast<std::int64_t>(values.size());
    std::copy(values.begin(), values.end(), result.makeReal(n, ALLOC_HINT, n));
    result.setPhysType(physType, PT_UNCHANGED);
}

NameArray labelsOfGroup(FuncArgs const & args) {
    Group const * const group = groupOf(args, 0);
    return group != nullptr ? *group->labels : NameArray();
}

NameArray labelsOfVector(FuncArgs const & args) {
    NameArray labels;
    if (args.numYDivisions(0) > 1) args.getYDivisionLabelArray(0, &labels);
    return labels;
}

FUNC_ERROR getGroupStepParameter(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    giveParameters(result, labelsOfGroup(args));
    return FUNC_OK;
}

FUNC_ERROR getGroupStepVals(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    giveValues(result, labelsOfGroup(args), countFrom(numberOr(args, 1, 0)));
    return FUNC_OK;
}

FUNC_ERROR getVecStepParameter(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    giveParameters(result, labelsOfVector(args));
    return FUNC_OK;
}

FUNC_ERROR getVecStepVals(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    giveValues(result, labelsOfVector(args), countFrom(numberOr(args, 1, 0)));
    return FUNC_OK;
}

// --- timers

FUNC_ERROR listFunctionTimers(FuncArgs const & args, FuncResult & result, MessageHandler &) {
    Texts texts;
    for (YString const & text : functionTimerTexts()) texts.push_back(stringOf(text));
    if (equalNoCase(textOf(args, 0), "clear")) clearFunctionTimers();
    giveStrings(result, texts);
    return FUNC_OK;
}

constexpr argType text = ARG_STRING;
constexpr MultiDef whole = MULTI_WHOLE;

constexpr FunctionRow rows[] = {
    {"CollateGroup", handlerOf<collateGroup>, 0, 3, {text, ARG_REAL, text}, {}, "Positions of the vectors of a group"},
    {"CollectionName", handlerOf<collectionName>, 0, 1, {text}, {}, "The collection that a group belongs to"},
    {"GetGroupInfo", handlerOf<getGroupInfo>, 1, 1, {text}, {}, "Data file, date, title and name of a group"},
    {"GetGroupStepParameter", handlerOf<getGroupStepParameter>, 0, 1, {text}, {}, "What was stepped in a group"},
    {"GetGroupStepVals", handlerOf<getGroupStepVals>, 0, 2, {text, ARG_REAL}, {}, "Values of the steps of a group"},
    {"GetPostProcessScripts", handlerOf<getPostProcessScripts>, 1, 1, {text}, {}, "Scripts to run after a simulation"},
    {"GetVecStepParameter", handlerOf<getVecStepParameter>, 1, 1, {ARG_ANY}, {whole}, "What was stepped in a vector"},
    {"GetVecStepVals",
     handlerOf<getVecStepVals>,
     1,
     2,
     {ARG_ANY, ARG_REAL},
     {whole},
     "Values of the steps of a vector"},
    {"Groups", handlerOf<groups>, 0, 1, {text}, {}, "Names, titles or dates of all groups"},
    {"GroupsInCollection", handlerOf<groupsInCollection>, 1, 1, {text}, {}, "Names of the groups of a collection"},
    {"ListFunctionTimers", handlerOf<listFunctionTimers>, 0, 1, {text}, {}, "Time spent in each function"},
    {"MakeCollection", handlerOf<makeCollection>, 1, 2, {text, text}, {}, "Opens a collection for the groups to come"},
    {"VectorsInGroup", handlerOf<vectorsInGroup>, 0, 2, {text, text}, {}, "Names of the vectors of a group"},
};

FunctionFamily const family(rows);

} // namespace
