#include <KestoDM/graph/DmOverloadSet.h>

#include <KestoDM/foundation/DmNameUtils.h>
#include <KestoDM/graph/DmCompound.h>
#include <KestoDM/graph/DmExternOperator.h>
#include <KestoDM/graph/DmOverload.h>
#include <KestoDM/graph/DmPortDescription.h>
#include <KestoDM/graph/DmScope.h>
#include <KestoDM/types/DmBaseType.h>
#include <KestoDM/types/DmUninstantiableType.h>

#include "types/DmTypeSingletons.h"

#include <algorithm>

namespace Kesto {

namespace {

bool isAuto(DmBaseType const* type) noexcept {
    return type != nullptr && type->getTypeKind() == kTypeAuto;
}

// Compiled code cannot be copied, and a compound without a URI has no source
// that the copy could name as its origin.
bool isImportable(DmOverload const& overload) noexcept {
    if (dynamic_cast<DmExternOperator const*>(&overload) != nullptr) {
        return false;
    }
    auto const* const compound = dynamic_cast<DmCompound const*>(&overload);
    return compound == nullptr || compound->getURI() != nullptr;
}

} // namespace

std::shared_ptr<DmOverloadSet> DmOverloadSet::newOverloadSet(std::shared_ptr<DmOverload> const& overload,
                                                             bool builtIn) {
    if (!overload) {
        return nullptr;
    }
    auto set = std::make_shared<DmOverloadSet>(InternalConstructor(), overload->getName(), builtIn);
    set->initializeScope(overload->getScope());
    set->setAssociativity(overload->associativity());
    set->m_valueNodeDef = overload->isValueNodeDef();
    set->m_overloads->push_back(overload);
    if (overload->isDefaultOverload()) {
        set->m_defaultOverload = overload.get();
    }
    for (auto const& entry : overload->getPortsInterface()) {
        set->addPortAndPropagate(set->cloneForSet(*entry.second, entry.second->getType()));
    }
    return set;
}

DmOverloadSet::DmOverloadSet(InternalConstructor, std::string name, bool builtIn)
    : DmNodeDef(std::move(name), true), m_overloads(std::make_shared<OverloadList>()), m_builtIn(builtIn) {}

DmOverloadSet::~DmOverloadSet() {
    // The overloads may outlive the set (callers hold them): they must not
    // point at it any more.
    for (auto const& overload : *m_overloads) {
        if (overload->get_owner() == this) {
            overload->setOwner(nullptr);
        }
    }
}

std::shared_ptr<DmPortDescription> DmOverloadSet::cloneForSet(DmPortDescription const& port,
                                                              std::shared_ptr<DmBaseType const> const& type) {
    auto clone = port.clone();
    if (clone->getType() != type) {
        clone->setType(type);
    }
    clone->setNodeDef(this);
    return clone;
}

// ---------------------------------------------------------------------------
// Overloads

DmStatus DmOverloadSet::addOverload(std::shared_ptr<DmOverload> const& overload) {
    if (!overload) {
        return DmStatus::kInvalidArgument;
    }
    if (std::find(m_overloads->begin(), m_overloads->end(), overload) != m_overloads->end()) {
        return DmStatus::kFailure;
    }
    DmStatus status = DmStatus::kSuccess;
    if (!m_overloads->empty()) {
        if (auto* const compound = dynamic_cast<DmCompound*>(overload.get())) {
            compound->joinSet(*this);
        }
        // Widen: a port on which the newcomer disagrees becomes auto here.
        std::vector<std::shared_ptr<DmPortDescription>> widened;
        for (auto const& entry : getPortsInterface()) {
            DmPortDescription const& mine = *entry.second;
            if (isAuto(mine.getType().get())) {
                continue;
            }
            auto const theirs = overload->getPortsInterface()[entry.first];
            if (!theirs) {
                status = DmStatus::kFailure;
            } else if (theirs->getType() != mine.getType()) {
                widened.push_back(cloneForSet(mine, Internal::TypeSingletons::autoType()));
            }
        }
        for (auto const& port : widened) {
            if (!replacePortAndPropagate(port)) {
                status = DmStatus::kFailure;
            }
        }
    } else {
        for (auto const& entry : overload->getPortsInterface()) {
            if (!addPortAndPropagate(cloneForSet(*entry.second, entry.second->getType()))) {
                status = DmStatus::kFailure;
            }
        }
    }
    m_overloads->push_back(overload);
    return status;
}

DmStatus DmOverloadSet::removeOverload(std::shared_ptr<DmOverload> const& overload) {
    if (!overload) {
        return DmStatus::kInvalidArgument;
    }
    DmStatus status = DmStatus::kSuccess;
    bool const flagged = overload->isDefaultOverload();
    bool const pointed = m_defaultOverload == overload.get();
    if (flagged && pointed) {
        overload->assignIsDefaultOverload(false);
        m_defaultOverload = nullptr;
    } else if (flagged != pointed) {
        status = DmStatus::kFailure;
    }
    auto const found = std::find(m_overloads->begin(), m_overloads->end(), overload);
    if (found == m_overloads->end()) {
        return DmStatus::kFailure;
    }
    m_overloads->erase(found);
    if (overload->get_owner() == this) {
        overload->setOwner(nullptr);
    }
    if (m_overloads->empty() || status.isFailure()) {
        return status;
    }
    // Narrow: an auto port takes the type of the remaining overloads again
    // when they all agree on one.
    std::vector<std::shared_ptr<DmPortDescription>> narrowed;
    for (auto const& entry : getPortsInterface()) {
        DmPortDescription const& mine = *entry.second;
        if (!isAuto(mine.getType().get())) {
            continue;
        }
        std::shared_ptr<DmBaseType const> common;
        bool found = false;
        bool agree = true;
        for (auto const& remaining : *m_overloads) {
            auto const theirs = remaining->getPortsInterface()[entry.first];
            if (!theirs) {
                status = DmStatus::kFailure;
                continue;
            }
            if (!found) {
                common = theirs->getType();
                found = true;
            } else if (theirs->getType() != common) {
                agree = false;
            }
        }
        if (found && agree && common != mine.getType()) {
            narrowed.push_back(cloneForSet(mine, common));
        }
    }
    for (auto const& port : narrowed) {
        replacePortAndPropagate(port);
    }
    return status;
}

void DmOverloadSet::mergePort(std::string const& name) {
    std::shared_ptr<DmPortDescription> first;
    bool agree = true;
    for (auto const& overload : *m_overloads) {
        auto const port = overload->getPortsInterface()[name];
        if (!port) {
            continue;
        }
        if (!first) {
            first = port;
        } else if (port->getType() != first->getType()) {
            agree = false;
        }
    }
    auto const mine = getPortsInterface()[name];
    if (!first) {
        if (mine) {
            removePortAndPropagate(mine);
            mine->setNodeDef(nullptr);
        }
        return;
    }
    std::shared_ptr<DmBaseType const> const type =
        agree ? first->getType() : Internal::TypeSingletons::autoType();
    if (mine && mine->getType() == type && mine->getDirection() == first->getDirection() &&
        mine->getPortKind() == first->getPortKind()) {
        return;
    }
    auto const merged = cloneForSet(*first, type);
    if (mine) {
        replacePortAndPropagate(merged);
        mine->setNodeDef(nullptr);
    } else {
        addPortAndPropagate(merged);
    }
}

bool DmOverloadSet::renamePortDescription(std::string const& oldName, std::string const& newName) {
    if (isConst() || isValueNodeDef()) {
        return false;
    }
    if (isInUpdate()) {
        return true;
    }
    if (!getPortsInterface().hasPort(oldName) ||
        (newName != oldName && getPortsInterface().hasPort(newName))) {
        return false;
    }
    NodeDefUpdateHelper const guard(*this);
    // The overloads go first; while the set is in update they do not merge
    // their change into it, which the set does itself below.
    for (auto const& overload : *m_overloads) {
        if (overload->getPortsInterface().hasPort(oldName)) {
            overload->renamePortDescription(oldName, newName);
        }
    }
    return renamePortAndPropagate(oldName, newName);
}

void DmOverloadSet::mergeRenamedPort(std::string const& oldName, std::string const& newName) {
    if (isInUpdate()) {
        return;
    }
    bool oldStillUsed = false;
    for (auto const& overload : *m_overloads) {
        oldStillUsed = oldStillUsed || overload->getPortsInterface().hasPort(oldName);
    }
    // The usual case, a set of one: rename in place, so that the set's nodes
    // keep their ports, values and order.
    if (!oldStillUsed && getPortsInterface().hasPort(oldName) && !getPortsInterface().hasPort(newName)) {
        DmNodeDef::renamePortDescription(oldName, newName);
        mergePort(newName);
        return;
    }
    mergePort(oldName);
    mergePort(newName);
}

// ---------------------------------------------------------------------------
// Answers for the set

bool DmOverloadSet::isBuiltIn() const {
    return m_builtIn;
}

bool DmOverloadSet::isValueNodeDef() const {
    return m_valueNodeDef;
}

bool DmOverloadSet::isTerminal() const {
    return m_overloads->size() == 1 && m_overloads->front()->isTerminal();
}

bool DmOverloadSet::isUnknown() const {
    return !m_overloads->empty() && m_overloads->front()->isUnknown();
}

DmNodeDef::Associativity DmOverloadSet::associativity() const {
    return DmNodeDef::associativity();
}

bool DmOverloadSet::isConverter() const {
    if (DmNodeDef::isConverter()) {
        return true;
    }
    return std::any_of(m_overloads->begin(), m_overloads->end(),
                       [](std::shared_ptr<DmOverload> const& overload) { return overload->isConverter(); });
}

bool DmOverloadSet::isImported() const {
    return std::any_of(m_overloads->begin(), m_overloads->end(),
                       [](std::shared_ptr<DmOverload> const& overload) { return overload->isImported(); });
}

bool DmOverloadSet::isSingle() const {
    return isOverloadsLocked() && m_overloads->size() == 1;
}

DmStatus DmOverloadSet::setOverloadsLocked(bool locked) {
    if (!locked && hasAutoInputPort()) {
        return DmStatus::kFailure;
    }
    return DmNodeDef::setOverloadsLocked(locked);
}

DmNodeDef::AllowedTypes DmOverloadSet::getAllowedTypesForPort(std::string const& name) const {
    AllowedTypes types;
    if (!getPortsInterface().hasPort(name)) {
        return types;
    }
    for (auto const& overload : *m_overloads) {
        for (auto const& entry : overload->getAllowedTypesForPort(name)) {
            types.insert(entry.first, entry.second);
        }
    }
    return types;
}

std::shared_ptr<DmBaseValue> DmOverloadSet::findUnconnectedPortValue(std::string const& name) const {
    // With one overload its own answer stands; with several the set's
    // merged port speaks.
    if (m_overloads->size() == 1) {
        return m_overloads->front()->findUnconnectedPortValue(name);
    }
    return DmNodeDef::findUnconnectedPortValue(name);
}

// ---------------------------------------------------------------------------
// Placement

DmStatus DmOverloadSet::setScope(DmScope* scope, DmNameResolutionType type) {
    if (isConst()) {
        return DmStatus::kConstEntity;
    }
    if (scope == getScope()) {
        return DmStatus::kSuccess;
    }
    if (scope != nullptr) {
        std::shared_ptr<DmNodeDef> found;
        if (scope->findNodeDef(getName(), found) && found.get() != this) {
            // Sets do not merge: under kAsOverload as under kFailOnClash the
            // move is refused before the set leaves its scope.
            if (type != kMakeUnique) {
                return DmStatus::kInvalidArgument;
            }
            std::string name = getName();
            scope->getUniqueNodeDefName(name);
            if (!setName(name, kAsOverload, kNameVerbatim)) {
                return DmStatus::kFailure;
            }
        }
    }
    DmStatus const status = DmNodeDef::setScope(scope, type);
    if (status.isSuccess()) {
        for (auto const& overload : *m_overloads) {
            overload->initializeScope(scope);
        }
    }
    return status;
}

bool DmOverloadSet::setName(std::string const& name, DmNameResolutionType type, DmNameResolveFlags flags) {
    std::string resolved;
    RenameStart const start = beginRename(name, flags, resolved);
    if (start != RenameStart::kGoOn) {
        return start == RenameStart::kStored;
    }
    if (getScope() != nullptr) {
        std::string const wanted = resolved;
        getScope()->getUniqueNodeDefName(resolved, getName());
        if (type == kFailOnClash && resolved != wanted) {
            return false;
        }
    }
    NodeDefUpdateHelper const guard(*this);
    rekeyScopeEntry(getName(), resolved);
    // The overloads carry the name of their set, each through its own
    // rename (a compound renames its self node too); the one that started
    // this rename is in update and only stores it.
    for (auto const& overload : *m_overloads) {
        overload->setName(resolved, kAsOverload, kNameVerbatim);
    }
    return storeName(resolved, kNameVerbatim);
}

DmStatus DmOverloadSet::import(std::shared_ptr<DmScope> const& scope, DmNameResolutionType type,
                               std::string const& name, std::shared_ptr<DmNodeDef>& out,
                               ImportErrorFlags flags) {
    if (!scope) {
        return DmStatus::kFailure;
    }
    for (auto const& overload : *m_overloads) {
        if (!isImportable(*overload)) {
            return DmStatus::kFailure;
        }
    }
    std::string target = name;
    if (scope->hasNodeDef(target)) {
        if (type == kFailOnClash) {
            return DmStatus::kInvalidArgument;
        }
        if (type == kMakeUnique) {
            scope->getUniqueNodeDefName(target);
        }
    }
    DmStatus status = DmStatus::kSuccess;
    for (auto const& overload : *m_overloads) {
        std::shared_ptr<DmNodeDef> imported;
        DmStatus const result = overload->import(scope, kAsOverload, target, imported, flags);
        if (result.isFailure()) {
            status = result;
        }
    }
    std::shared_ptr<DmNodeDef> placed;
    if (scope->findNodeDef(target, placed)) {
        out = placed;
    }
    return status;
}

} // namespace Kesto
