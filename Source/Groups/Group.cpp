#include "Groups/Group.h"

#include "Groups/LoosePool.h"

#include <algorithm>
#include <utility>

namespace {

std::shared_ptr<NameArray> const & noLabels() {
    static auto const & none = *new std::shared_ptr<NameArray>(std::make_shared<NameArray>());
    return none;
}

bool fileGoesWith(Group const & group) noexcept {
    return group.dataFileTemporary && !group.keepDataFile;
}

// The first eight characters as a number. Where two such numbers differ, names are in their order.
std::uint64_t beginOf(std::string_view name) noexcept {
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < sizeof number; ++i) {
        auto const c = static_cast<unsigned char>(i < name.size() ? name[i] : 0);
        number = number << 8 | (c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    }
    return number;
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
    if (dataFile != nullptr && fileGoesWith(*this)) dataFile->deleteWhenClosed();
}

void Group::end() {
    if (destroying != 0) return;
    destroying = 1;
    YList<DeleteNotify> const notifications = std::move(deleteNotify);
    for (DeleteNotify const & notify : notifications) notify.proc(notify.arg, &name);
    VectorTable const doomed = std::exchange(vectors, {});
    doomed.forEach([](dvec & vector) { delete &vector; });
    if (oldStream != nullptr && fileGoesWith(*this)) oldStream->deleteWhenClosed();
    oldStream.reset();
    LoosePool::forgetGroup(*this);
}

dvec * Group::find(HashedName const & vectorName) const {
    if (dvec * found = vectors.find(vectorName)) return found;
    if (!vectorName.text.starts_with('$')) return nullptr;
    auto const pseudonym = pseudonyms.find(vectorName);
    return pseudonym != pseudonyms.end() ? vectors.find(pseudonym->second) : nullptr;
}

bool Group::enter(dvec * vector) {
    return vectors.insert(vector->name(), vector) || nameTaken(__LINE__);
}

void Group::remove(dvec * vector) {
    if (vectors.find(vector->name()) == vector) vectors.erase(vector->name());
}

bool Group::rename(dvec * vector, YString const & newName) {
    dvec const * taken = vectors.find(newName);
    if (taken != nullptr && taken != vector) return nameTaken(__LINE__);
    vectors.erase(vector->name());
    vectors.insert(newName, vector); // into memory that is there
    return true;
}

YArray<dvec *> Group::vectorsInOrder() const {
    struct Named { // beside the vector, so that the sort does not look into it
        std::uint64_t begin;
        std::string_view name;
        dvec * vector;
    };
    YArray<Named> sorted;
    sorted.reserve(vectors.size());
    vectors.forEach([&sorted](dvec & vector) {
        std::string_view const vectorName = vector.name();
        sorted.push_back({beginOf(vectorName), vectorName, &vector});
    });
    std::sort(sorted.begin(), sorted.end(), [](Named const & a, Named const & b) {
        return a.begin != b.begin ? a.begin < b.begin : compareNoCase(a.name, b.name) < 0;
    });
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
        if (dvec * vector = vectors.find(vectorName)) visit(*vector);
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
