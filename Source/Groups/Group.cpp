#include "Groups/Group.h"

#include "Groups/LoosePool.h"

#include <algorithm>

namespace {

std::shared_ptr<NameArray> const & noLabels() {
    static auto const & none = *new std::shared_ptr<NameArray>(std::make_shared<NameArray>());
    return none;
}

bool nameTaken(int line) {
    internal_error("Error found in module %s, line %d", "Source\\plots", line);
    return false;
}

} // namespace

Group::Group(YString groupName, YString groupTitle, std::uint32_t groupFlags)
    : flags(groupFlags), name(std::move(groupName)), title(std::move(groupTitle)), labels(noLabels()) {}

Group::~Group() {
    end();
    if (dataFile != nullptr && dataFileTemporary && !keepDataFile) dataFile->deleteWhenClosed();
}

void Group::end() {
    if (destroying != 0) return;
    destroying = 1;
    YList<DeleteNotify> const notifications = std::move(deleteNotify);
    for (DeleteNotify const & notify : notifications) notify.proc(notify.arg, &name);
    NameTable<dvec *> const doomed = std::move(vectors);
    vectors.clear();
    for (auto const & entry : doomed) delete entry.second;
    oldStream.reset();
    LoosePool::forgetGroup(*this);
}

dvec * Group::find(HashedName const & vectorName) const {
    if (auto const found = vectors.find(vectorName); found != vectors.end()) return found->second;
    if (!vectorName.text.starts_with('$')) return nullptr;
    auto const pseudonym = pseudonyms.find(vectorName);
    if (pseudonym == pseudonyms.end()) return nullptr;
    auto const found = vectors.find(pseudonym->second);
    return found != vectors.end() ? found->second : nullptr;
}

bool Group::enter(dvec * vector) {
    return vectors.try_emplace(vector->name(), vector).second || nameTaken(__LINE__);
}

void Group::remove(dvec * vector) {
    auto const entry = vectors.find(vector->name());
    if (entry != vectors.end() && entry->second == vector) vectors.erase(entry);
}

bool Group::rename(dvec * vector, YString const & newName) {
    auto const taken = vectors.find(newName);
    if (taken != vectors.end() && taken->second != vector) return nameTaken(__LINE__);
    auto entry = vectors.extract(vectors.find(vector->name()));
    entry.key() = newName;
    vectors.insert(std::move(entry));
    return true;
}

YArray<dvec *> Group::vectorsInOrder() const {
    struct Named {
        std::string_view name; // beside the vector, so that the sort does not look into it
        dvec * vector;
    };
    YArray<Named> sorted;
    sorted.reserve(vectors.size());
    for (auto const & entry : vectors) sorted.push_back({entry.second->name().view(), entry.second});
    std::sort(sorted.begin(), sorted.end(),
              [](Named const & a, Named const & b) { return compareNoCase(a.name, b.name) < 0; });
    YArray<dvec *> inOrder;
    inOrder.reserve(sorted.size());
    for (Named const & named : sorted) inOrder.push_back(named.vector);
    return inOrder;
}

YArray<YString> Group::namesInOrder() const {
    YArray<YString> names;
    names.reserve(vectors.size());
    for (dvec const * vector : vectorsInOrder()) names.push_back(vector->name());
    return names;
}

// By name, and looked up again for each: a callback may have deleted a vector that was still to come.
void Group::forEachVector(std::function<void(dvec &)> const & visit) {
    for (YString const & vectorName : namesInOrder())
        if (auto const entry = vectors.find(vectorName); entry != vectors.end()) visit(*entry->second);
}

void Group::addLabel(YString const & label) {
    if (labels.use_count() > 1) labels = std::make_shared<NameArray>(*labels);
    labels->push_back(label);
    if (dataFile != nullptr && labelStream > 0) dataFile->appendText(labelStream, label);
}

void Group::addPostProcess(YString const & script) {
    if (dataFile != nullptr && postProcStream > 0 && dataFile->appendText(postProcStream, script)) return;
    postProcPending.push_back(script);
}

YArray<YString> Group::postProcessScripts() const {
    YArray<YString> scripts;
    if (dataFile != nullptr && postProcStream > 0) dataFile->readTexts(postProcStream, &scripts);
    scripts.insert(scripts.end(), postProcPending.begin(), postProcPending.end());
    return scripts;
}

YString Group::pseudonymOf(YString const & vectorName) {
    dvec const * vector = find(vectorName);
    if (vector == nullptr) return vectorName;
    if (auto const known = pseudonymOfName.find(vector->name()); known != pseudonymOfName.end()) return known->second;
    YString pseudonym;
    do pseudonym = YString::joined("$", {YString(pseudonymCounter++).view()});
    while (vectors.contains(pseudonym));
    pseudonyms.emplace(pseudonym, vector->name());
    pseudonymOfName.emplace(vector->name(), pseudonym);
    return pseudonym;
}

YString Group::resolvePseudonym(YString const & vectorName) const {
    if (!vectorName.beginsWith("$") || vectors.contains(vectorName)) return vectorName;
    auto const known = pseudonyms.find(vectorName);
    return known != pseudonyms.end() ? known->second : vectorName;
}
