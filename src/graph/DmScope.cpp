#include <KestoDM/graph/DmScope.h>

#include <KestoDM/foundation/DmMessageLogger.h>
#include <KestoDM/foundation/DmMessageReport.h>
#include <KestoDM/foundation/DmNameUtils.h>
#include <KestoDM/foundation/DmNamedEntity.h>
#include <KestoDM/graph/DmOverload.h>
#include <KestoDM/graph/DmOverloadSet.h>
#include <KestoDM/platform/BaMessageTypes.h>

namespace Kesto {

namespace {

bool isRoot(DmScope const& scope) {
    return scope.isGlobalNamespace() || scope.isBuiltInNamespace() || scope.isReservedNamespace();
}

} // namespace

DmScope::DmScope(std::shared_ptr<DmMessageLogger> logger)
    : m_logger(std::move(logger)), m_nestedScopes(std::make_shared<ScopeSet>()),
      m_nodeDefs(std::make_shared<NodeDefMap>()) {}

DmScope::~DmScope() = default;

std::shared_ptr<DmMessageLogger> DmScope::getLogger() const {
    return m_logger;
}

bool DmScope::isValid() const {
    return true;
}

bool DmScope::isGlobalNamespace() const {
    return false;
}

bool DmScope::isBuiltInNamespace() const {
    return false;
}

bool DmScope::isReservedNamespace() const {
    return false;
}

DmStatus DmScope::addNestedScope(std::shared_ptr<DmScope> const& scope) {
    return m_nestedScopes->insert(scope).second ? DmStatus::kSuccess : DmStatus::kFailure;
}

DmStatus DmScope::removeNestedScope(std::shared_ptr<DmScope> const& scope) {
    return m_nestedScopes->erase(scope) != 0 ? DmStatus::kSuccess : DmStatus::kFailure;
}

// ---------------------------------------------------------------------------
// Node definitions

DmStatus DmScope::registerNodeDef(std::shared_ptr<DmNodeDef> const& def) {
    if (!def) {
        return DmStatus::kInvalidArgument;
    }
    def->m_scope = this;
    // A definition that is a scope itself (a compound) nests here as a scope too.
    if (auto const scope = std::dynamic_pointer_cast<DmScope>(def)) {
        scope->setParent(this);
        addNestedScope(scope);
    }
    if (auto const set = std::dynamic_pointer_cast<DmOverloadSet>(def)) {
        return registerOverloadSet(set);
    }
    auto const overload = std::dynamic_pointer_cast<DmOverload>(def);
    if (!overload) {
        return DmStatus::kInvalidArgument;
    }
    auto const found = m_nodeDefs->find(def->getName());
    if (found != m_nodeDefs->end()) {
        auto const set = std::dynamic_pointer_cast<DmOverloadSet>(found->second);
        if (!set) {
            return DmStatus::kFailure;
        }
        overload->setOwner(set.get());
        return set->addOverload(overload);
    }
    auto const set = DmOverloadSet::newOverloadSet(overload, def->isBuiltIn());
    overload->setOwner(set.get());
    set->setLibrary(def->getLibrary());
    return registerOverloadSet(set);
}

DmStatus DmScope::registerOverloadSet(std::shared_ptr<DmOverloadSet> const& set) {
    return m_nodeDefs->insert(set->getName(), set).second ? DmStatus::kSuccess : DmStatus::kInvalidArgument;
}

DmStatus DmScope::unregisterNodeDef(std::shared_ptr<DmNodeDef> const& def) {
    if (!def) {
        return DmStatus::kInvalidArgument;
    }
    if (auto const scope = std::dynamic_pointer_cast<DmScope>(def)) {
        scope->setParent(nullptr);
        removeNestedScope(scope);
    }
    auto const found = m_nodeDefs->find(def->getName());
    if (found == m_nodeDefs->end()) {
        return DmStatus::kSuccess;
    }
    auto const set = std::dynamic_pointer_cast<DmOverloadSet>(found->second);
    auto const overload = std::dynamic_pointer_cast<DmOverload>(def);
    if (!set || !overload) {
        m_nodeDefs->erase(found);
        return DmStatus::kSuccess;
    }
    // The set goes on living in `keep` while the overload is taken out.
    std::shared_ptr<DmOverloadSet> const keep = set;
    DmStatus const status = set->removeOverload(overload);
    // Nodes that still use a placeholder's set keep pointing at it: the entry
    // stays until the proper definition replaces the placeholder.
    if (set->empty() && !(def->isUnknown() && !set->hasNoReference())) {
        m_nodeDefs->erase(def->getName());
    }
    overload->setOwner(nullptr);
    return status;
}

bool DmScope::findNodeDef(std::string const& name, std::shared_ptr<DmNodeDef>& out) const {
    // A plain scope knows its own names only.
    if (name.find(kSeparator, 0, kSeparatorLength) != std::string::npos) {
        return false;
    }
    auto const found = m_nodeDefs->find(name);
    if (found == m_nodeDefs->end()) {
        return false;
    }
    out = found->second;
    return true;
}

bool DmScope::findNodeDef(std::string const& name, std::shared_ptr<DmOverloadSet>& out) const {
    std::shared_ptr<DmNodeDef> found;
    if (!findNodeDef(name, found)) {
        return false;
    }
    out = std::dynamic_pointer_cast<DmOverloadSet>(found);
    return true;
}

bool DmScope::hasNodeDef(std::string const& name) const {
    std::shared_ptr<DmNodeDef> found;
    return findNodeDef(name, found);
}

void DmScope::getUniqueNodeDefName(std::string& name, std::string const& exception) const {
    if (name == exception || !m_nodeDefs->contains(name)) {
        return;
    }
    DmNameUtils::NewNameContext context;
    context.exception = exception;
    DmNameUtils::getNewName(m_nodeDefs->begin(), m_nodeDefs->end(), name, &context);
}

bool DmScope::rekeyNodeDef(std::string const& oldName, std::string const& newName) {
    auto const found = m_nodeDefs->find(oldName);
    return found != m_nodeDefs->end() && m_nodeDefs->rekey(found, newName);
}

// ---------------------------------------------------------------------------
// Names

void DmScope::resolveScopeName(std::string& out) const {
    if (m_parent == nullptr) {
        if (isRoot(*this)) {
            return;
        }
        // An orphan still gets its own name, so that what is printed stays
        // recognisable; the report tells that the path is cut short.
        if (std::shared_ptr<DmMessageLogger> const logger = getLogger()) {
            DmNamedEntity const* const entity = getAsNamedEntity();
            std::shared_ptr<DmNamedEntity const> const owner =
                entity != nullptr ? entity->weak_from_this().lock() : nullptr;
            logger->reportMessage(std::make_shared<DmMessageReport>(
                owner, BaMessageTypes::kMessageError, "missing parent scope",
                "the scope " + getLocalScopeName() + " does not have a parent"));
        }
    } else if (!isRoot(*m_parent)) {
        // A root contributes neither a name nor a separator.
        m_parent->resolveScopeName(out);
        out.append(kSeparator, kSeparatorLength);
    }
    out += getLocalScopeName();
}

bool DmScope::equalScopeName(DmScope const* other) const {
    if (other == this) {
        return true;
    }
    if (other == nullptr) {
        return false;
    }
    DmScope const* left = this;
    DmScope const* right = other;
    for (;;) {
        if (left->getLocalScopeName() != right->getLocalScopeName()) {
            return false;
        }
        DmScope const* const leftParent = left->getParentScope();
        DmScope const* const rightParent = right->getParentScope();
        if ((leftParent == nullptr) != (rightParent == nullptr)) {
            return false;
        }
        if (leftParent == nullptr) {
            return left->isGlobalNamespace() == right->isGlobalNamespace() &&
                   left->isBuiltInNamespace() == right->isBuiltInNamespace() &&
                   left->isReservedNamespace() == right->isReservedNamespace();
        }
        if (leftParent == rightParent) {
            return true;
        }
        left = leftParent;
        right = rightParent;
    }
}

void DmScope::resolveLocalNameAndScope(std::string const& fullName, std::string& scope, std::string& local) {
    std::string::size_type const at = fullName.rfind(kSeparator, std::string::npos, kSeparatorLength);
    if (at == std::string::npos) {
        local = fullName;
        scope.clear();
        return;
    }
    // `fullName` may be one of the outputs: take both parts before assigning.
    std::string tail = fullName.substr(at + kSeparatorLength);
    scope = fullName.substr(0, at);
    local = std::move(tail);
}

// The name utilities sit below the scopes; this one needs a complete scope,
// so it lives here rather than with its siblings.
std::string& DmNameUtils::computeFullScopeName(DmScope const& scope, std::string& out) {
    out.clear();
    scope.resolveScopeName(out);
    return out;
}

} // namespace Kesto
