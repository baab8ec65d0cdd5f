#include <KestoDM/graph/DmNamespace.h>

#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmExternOperator.h>
#include <KestoDM/graph/DmGlobalVariable.h>
#include <KestoDM/graph/DmNodeDef.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/graph/DmSelector.h>
#include <KestoDM/types/DmBaseType.h>

#include "graph/DmRootNamespaces.h"
#include "types/DmTypePlacement.h"

#include <string_view>

namespace Kesto {

namespace {

bool isCompound(DmOverload const& overload) noexcept {
    return dynamic_cast<DmCompound const*>(&overload) != nullptr;
}

bool isExternOperator(DmOverload const& overload) noexcept {
    return dynamic_cast<DmExternOperator const*>(&overload) != nullptr;
}

std::string_view::size_type findSeparator(std::string const& name) noexcept {
    return std::string_view(name).find(std::string_view(DmScope::kSeparator, DmScope::kSeparatorLength));
}

std::string restAfter(std::string const& name, std::string_view::size_type separator) {
    return name.substr(separator + DmScope::kSeparatorLength);
}

} // namespace

// ---------------------------------------------------------------------------
// Construction

std::shared_ptr<DmNamespace> DmNamespace::createNamespace(std::string const& name,
                                                          std::shared_ptr<DmMessageLogger> logger,
                                                          DmNameResolveFlags flags) {
    return makeNamed<DmNamespace>(name, flags, InternalConstructor(), std::move(logger));
}

DmNamespace::DmNamespace(InternalConstructor, std::string name, std::shared_ptr<DmMessageLogger> logger)
    : DmScope(std::move(logger)), DmNamedEntity(std::move(name), true),
      m_globalVariables(std::make_shared<GlobalVariableMap>()),
      m_nestedNamespaces(std::make_shared<NamespaceMap>()), m_types(std::make_shared<TypeMap>()) {}

DmNamespace::~DmNamespace() = default;

bool DmNamespace::isValid() const {
    return DmNamedEntity::isValid();
}

std::shared_ptr<DmNamespace> DmNamespace::self() const {
    // The weak form never throws: a namespace that no shared reference owns
    // (still in construction) simply has none to give.
    return std::const_pointer_cast<DmNamespace>(
        std::static_pointer_cast<DmNamespace const>(weak_from_this().lock()));
}

bool DmNamespace::isSelfOrAncestor(DmScope const* scope) const noexcept {
    for (DmScope const* current = this; current != nullptr; current = current->getParentScope()) {
        if (current == scope) {
            return true;
        }
    }
    return false;
}

// ---------------------------------------------------------------------------
// Nesting

DmStatus DmNamespace::setScope(DmScope* scope, DmNameResolutionType type) {
    if (isConst()) {
        return DmStatus::kConstEntity;
    }
    if (type != kFailOnClash) {
        return DmStatus::kInvalidArgument;
    }
    std::shared_ptr<DmNamespace> const me = self();
    if (scope != nullptr) {
        auto* const target = dynamic_cast<DmNamespace*>(scope);
        if (target == nullptr) {
            return DmStatus::kFailure;
        }
        if (!me) {
            return DmStatus::kInvalidArgument;
        }
        // The old parent keeps its entry: moving is detaching, then adopting.
        return target->addNestedNamespace(me);
    }
    if (DmScope* const parent = getParentScope()) {
        auto* const owner = dynamic_cast<DmNamespace*>(parent);
        if (owner != nullptr && me) {
            owner->removeNestedNamespace(me);
        }
        // Detached whatever the parent held: a parent whose entry is another
        // namespace of the same name does not own this one.
        setParent(nullptr);
    }
    return DmStatus::kSuccess;
}

DmStatus DmNamespace::addNestedNamespace(std::string const& name, std::shared_ptr<DmNamespace>& out) {
    if (name.empty()) {
        return DmStatus::kFailure;
    }
    auto const found = m_nestedNamespaces->find(name);
    if (found != m_nestedNamespaces->end()) {
        out = found->second;
        return DmStatus::kSuccess;
    }
    std::shared_ptr<DmNamespace> child = createNamespace(name, getLogger(), kNameVerbatim);
    if (!child) {
        return DmStatus::kFailure;
    }
    child->setParent(this);
    if (addNestedScope(child).isFailure()) {
        child->setParent(nullptr);
        return DmStatus::kFailure;
    }
    m_nestedNamespaces->insert(child->getName(), child);
    out = std::move(child);
    return DmStatus::kSuccess;
}

DmStatus DmNamespace::addNestedNamespace(std::shared_ptr<DmNamespace> const& child) {
    // A namespace inside itself or below itself would make a cycle that no
    // path walk and no release could leave.
    if (!child || isSelfOrAncestor(child.get())) {
        return DmStatus::kInvalidArgument;
    }
    if (m_nestedNamespaces->contains(child->getName())) {
        return DmStatus::kFailure;
    }
    child->setParent(this);
    m_nestedNamespaces->insert(child->getName(), child);
    return addNestedScope(child);
}

DmStatus DmNamespace::removeNestedNamespace(std::shared_ptr<DmNamespace> const& child) {
    if (!child) {
        return DmStatus::kSuccess;
    }
    // Unknown is no failure: the caller wanted it gone, and it is not here.
    auto const found = m_nestedNamespaces->find(child->getName());
    if (found == m_nestedNamespaces->end() || found->second != child) {
        return DmStatus::kSuccess;
    }
    child->setParent(nullptr);
    m_nestedNamespaces->erase(found);
    return removeNestedScope(child);
}

std::shared_ptr<DmNamespace> DmNamespace::fetchNamespace(std::string const& name) {
    if (name.empty()) {
        return self();
    }
    auto const separator = findSeparator(name);
    if (separator == 0) {
        return fetchNamespace(restAfter(name, separator));
    }
    std::string_view const head = std::string_view(name).substr(0, separator);
    std::shared_ptr<DmNamespace> child;
    auto const found = m_nestedNamespaces->find(head);
    if (found != m_nestedNamespaces->end()) {
        child = found->second;
    } else {
        addNestedNamespace(std::string(head), child);
    }
    if (!child || separator == std::string_view::npos) {
        return child;
    }
    return child->fetchNamespace(restAfter(name, separator));
}

// ---------------------------------------------------------------------------
// Types

template <class Out, class FindHere, class FindInChild>
bool DmNamespace::walkPath(std::string const& name, Out& out, FindHere const& findHere,
                           FindInChild const& findInChild) const {
    auto const separator = findSeparator(name);
    if (separator == 0) {
        // A leading "::" names this namespace again.
        return findInChild(*this, restAfter(name, separator), out);
    }
    if (separator == std::string_view::npos) {
        return findHere(name, out);
    }
    auto const child = m_nestedNamespaces->find(std::string_view(name).substr(0, separator));
    if (child == m_nestedNamespaces->end()) {
        return false;
    }
    return findInChild(*child->second, restAfter(name, separator), out);
}

bool DmNamespace::findType(std::string const& name, std::shared_ptr<DmBaseType const>& out) const {
    return walkPath(
        name, out,
        [this](std::string const& local, std::shared_ptr<DmBaseType const>& found) {
            auto const entry = m_types->find(local);
            if (entry == m_types->end()) {
                return false;
            }
            found = entry->second;
            return true;
        },
        [](DmNamespace const& ns, std::string const& rest, std::shared_ptr<DmBaseType const>& found) {
            return ns.findType(rest, found);
        });
}

bool DmNamespace::findType(std::string const& name, std::shared_ptr<DmBaseType>& out) const {
    std::shared_ptr<DmBaseType const> found;
    if (!findType(name, found)) {
        return false;
    }
    out = std::const_pointer_cast<DmBaseType>(found);
    return true;
}

bool DmNamespace::getType(std::string const& name, std::shared_ptr<DmBaseType const>& out) const {
    if (Internal::builtInNamespace().findType(name, out)) {
        return true;
    }
    return findType(name, out);
}

// ---------------------------------------------------------------------------
// Node definitions

bool DmNamespace::findNodeDef(std::string const& name, std::shared_ptr<DmNodeDef>& out) const {
    return walkPath(
        name, out,
        [this](std::string const& local, std::shared_ptr<DmNodeDef>& found) {
            return DmScope::findNodeDef(local, found);
        },
        [](DmNamespace const& ns, std::string const& rest, std::shared_ptr<DmNodeDef>& found) {
            return ns.findNodeDef(rest, found);
        });
}

bool DmNamespace::findNodeDef(std::string const& name, std::shared_ptr<DmOverloadSet>& out) const {
    std::shared_ptr<DmNodeDef> found;
    if (!findNodeDef(name, found)) {
        return false;
    }
    out = std::dynamic_pointer_cast<DmOverloadSet>(found);
    return true;
}

DmStatus DmNamespace::registerType(std::shared_ptr<DmBaseType> const& type) {
    if (!type) {
        return DmStatus::kInvalidArgument;
    }
    auto const result = m_types->insert(type->getName(), type);
    if (result.second) {
        return DmStatus::kSuccess;
    }
    // The same definition met twice (a file read again, a type declared in two
    // files) is no clash: the first one stays.
    return DmBaseType::equivalent(*result.first->second, *type) ? DmStatus::kSuccess : DmStatus::kFailure;
}

DmStatus DmNamespace::unregisterType(std::shared_ptr<DmBaseType> const& type) {
    if (!type) {
        return DmStatus::kInvalidArgument;
    }
    // Only the type filed here goes: an equivalent newcomer that registration
    // turned away must not take the first one with it.
    auto const found = m_types->find(type->getName());
    if (found == m_types->end() || found->second != type) {
        return DmStatus::kFailure;
    }
    m_types->erase(found);
    return DmStatus::kSuccess;
}

// ---------------------------------------------------------------------------
// Global variables

DmStatus DmNamespace::registerGlobalVariable(std::shared_ptr<DmGlobalVariable> const& variable) {
    if (!variable) {
        return DmStatus::kInvalidArgument;
    }
    // Unlike types, two variables of one name are a clash whatever they hold.
    return m_globalVariables->insert(variable->getName(), variable).second ? DmStatus::kSuccess
                                                                           : DmStatus::kFailure;
}

DmStatus DmNamespace::unregisterGlobalVariable(std::shared_ptr<DmGlobalVariable> const& variable) {
    if (!variable) {
        return DmStatus::kInvalidArgument;
    }
    // Only the variable filed here goes: one that lost a clash still names
    // this namespace, and must not take the newcomer of its name with it.
    auto const found = m_globalVariables->find(variable->getName());
    if (found == m_globalVariables->end() || found->second != variable) {
        return DmStatus::kFailure;
    }
    m_globalVariables->erase(found);
    return DmStatus::kSuccess;
}

// ---------------------------------------------------------------------------
// Collecting

void DmNamespace::collect(DmCollectList& list, DmSelector const& selector, DmCollectMask mask,
                          DmCollectFlags flags) const {
    if ((mask & kCollectTypes) != 0) {
        for (auto const& entry : *m_types) {
            std::shared_ptr<DmNamedEntity> const type = entry.second;
            if (isFileDefinedKind(entry.second->getTypeKind()) && selector.select(type)) {
                list.push_back(type);
            }
        }
    }
    if ((mask & (kCollectCompounds | kCollectExternOperators)) != 0) {
        for (auto const& entry : getNodeDefs()) {
            auto const* const set = dynamic_cast<DmOverloadSet const*>(entry.second.get());
            if (set == nullptr || set->isBuiltIn()) {
                continue;
            }
            for (auto const& overload : set->getOverloads()) {
                bool const wanted = ((mask & kCollectCompounds) != 0 && isCompound(*overload)) ||
                                    ((mask & kCollectExternOperators) != 0 && isExternOperator(*overload));
                if (wanted && selector.select(overload)) {
                    list.push_back(overload);
                }
            }
        }
    }
    if ((flags & kCollectNested) != 0) {
        for (auto const& entry : *m_nestedNamespaces) {
            entry.second->collect(list, selector, mask, flags);
        }
    }
}

// ---------------------------------------------------------------------------
// The namespace side of DmBaseType's placement

namespace Internal {

void appendTypeScope(DmBaseType const& type, std::string& out) {
    DmNamespace const* const ns = type.getNamespace();
    if (ns == nullptr) {
        return;
    }
    std::string scope;
    ns->resolveScopeName(scope);
    if (!scope.empty()) {
        out += scope;
        out.append(DmScope::kSeparator, DmScope::kSeparatorLength);
    }
}

DmStatus placeType(DmBaseType& type, DmNamespace*& current, DmNamespace* target) {
    std::shared_ptr<DmBaseType> const self =
        std::static_pointer_cast<DmBaseType>(type.weak_from_this().lock());
    if (target == nullptr) {
        if (current != nullptr) {
            if (self) {
                current->unregisterType(self);
            }
            current = nullptr;
        }
        return DmStatus::kSuccess;
    }
    if (target == current) {
        return DmStatus::kSuccess;
    }
    // A namespace files types by shared reference; one that nothing owns
    // cannot be filed.
    if (!self) {
        return DmStatus::kInvalidArgument;
    }
    if (type.isConst() && !target->isBuiltInNamespace() && !target->isReservedNamespace()) {
        // The type singletons are const and get their namespace once, when
        // the process-wide namespaces are made. Make those first, so that no
        // caller can take a singleton elsewhere before it is in its place.
        builtInNamespace();
        reservedNamespace();
        if (current != nullptr) {
            return DmStatus::kConstEntity;
        }
    }
    if (current != nullptr) {
        current->unregisterType(self);
    }
    DmStatus const status = target->registerType(self);
    // On failure the type is in no namespace but still points at the old one:
    // the caller must treat it as lost.
    if (status.isSuccess()) {
        current = target;
    }
    return status;
}

} // namespace Internal

} // namespace Kesto
