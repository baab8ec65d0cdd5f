#pragma once

#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmNamedEntity.h>
#include <KestoDM/graph/DmNamespace.h>
#include <KestoDM/graph/DmScope.h>
#include <KestoDM/graph/DmSelector.h>
#include <KestoDM/library/DmLibrary.h>
#include <KestoDM/platform/BaMessageRecord.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmBuiltInType.h>
#include <KestoDM/types/DmClassType.h>
#include <KestoDM/types/DmEnumType.h>
#include <KestoDM/types/DmStructType.h>
#include <KestoDM/types/DmUninstantiableType.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace KestoTest {

/// A scope that is nothing else: no name of its own as an entity, no moves.
/// It opens the protected nesting operations to the tests.
class PlainScope : public Kesto::DmScope {
public:
    PlainScope(std::string name, std::shared_ptr<Kesto::DmMessageLogger> logger)
        : DmScope(std::move(logger)), m_name(std::move(name)) {}

    Kesto::DmNamedEntity* getAsNamedEntity() override { return nullptr; }
    Kesto::DmStatus setScope(Kesto::DmScope*, Kesto::DmNameResolutionType) override {
        return Kesto::DmStatus::kFailure;
    }
    std::string const& getLocalScopeName() const override { return m_name; }

    using DmScope::addNestedScope;
    using DmScope::removeNestedScope;

private:
    std::string m_name;
};

/// A namespace that answers one of the root tests, for chains that end at
/// roots other than a library's.
class RootNamespace : public Kesto::DmNamespace {
public:
    enum Kind { kGlobal, kBuiltIn, kReserved };

    RootNamespace(std::string name, Kind kind)
        : DmNamespace(InternalConstructor(), std::move(name), nullptr), m_kind(kind) {}

    static std::shared_ptr<RootNamespace> make(std::string name, Kind kind) {
        return std::make_shared<RootNamespace>(std::move(name), kind);
    }

    bool isGlobalNamespace() const override { return m_kind == kGlobal; }
    bool isBuiltInNamespace() const override { return m_kind == kBuiltIn; }
    bool isReservedNamespace() const override { return m_kind == kReserved; }

private:
    Kind m_kind;
};

/// Accepts every entity.
class AcceptAll : public Kesto::DmSelector {
public:
    bool select(std::shared_ptr<Kesto::DmNamedEntity> const&) const override { return true; }
};

/// Accepts the entities whose name is not `refused`.
class RefuseName : public Kesto::DmSelector {
public:
    explicit RefuseName(std::string refused) : m_refused(std::move(refused)) {}
    bool select(std::shared_ptr<Kesto::DmNamedEntity> const& entity) const override {
        return entity->getName() != m_refused;
    }

private:
    std::string m_refused;
};

inline std::shared_ptr<Kesto::DmMessageLogger> makeLogger() {
    return std::make_shared<Kesto::DmMessageLogger>(nullptr);
}

inline std::shared_ptr<Kesto::DmNamespace>
makeNamespace(std::string const& name, std::shared_ptr<Kesto::DmMessageLogger> logger = nullptr) {
    return Kesto::DmNamespace::createNamespace(name, logger ? std::move(logger) : makeLogger(),
                                               Kesto::kNameVerbatim);
}

/// A struct with one int member named `member`; two such structs are equivalent.
inline std::shared_ptr<Kesto::DmStructType> makeStruct(std::string const& name,
                                                       std::string const& member = "x") {
    auto type = Kesto::DmLibrary::createStructType(name);
    type->addMember(member, Kesto::DmLibrary::getIntType());
    return type;
}

inline std::shared_ptr<Kesto::DmClassType> makeClass(std::string const& name) {
    return Kesto::DmLibrary::createClassType(name);
}

inline std::shared_ptr<Kesto::DmEnumType> makeEnum(std::string const& name) {
    auto type = Kesto::DmLibrary::createEnumType(name);
    type->addEnumeration("first");
    return type;
}

inline std::string fullName(Kesto::DmNamedEntity const& entity) {
    std::string out;
    entity.resolveFullName(out);
    return out;
}

inline std::string scopeName(Kesto::DmScope const& scope) {
    std::string out;
    scope.resolveScopeName(out);
    return out;
}

/// The names of the entities of `list`, in order.
template <class List>
std::vector<std::string> namesOf(List const& list) {
    std::vector<std::string> names;
    for (auto const& entity : list) {
        names.push_back(entity->getName());
    }
    return names;
}

/// The keys of an ordered map, in order.
template <class Map>
std::vector<std::string> keysOf(Map const& map) {
    std::vector<std::string> keys;
    for (auto const& entry : map) {
        keys.push_back(entry.first);
    }
    return keys;
}

} // namespace KestoTest
