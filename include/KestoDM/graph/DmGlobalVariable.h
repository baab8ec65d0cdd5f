#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/foundation/DmNamedEntity.h>
#include <KestoDM/foundation/DmStatus.h>
#include <KestoDM/platform/DmExport.h>

#include <memory>
#include <string>
#include <utility>

namespace Kesto {

class DmBaseType;
class DmBaseValue;
class DmNamespace;

/// A named, typed value that lives in a namespace: "a::b::v" is the variable
/// v of the namespace b nested in a.
///
/// Made by createGlobalVariable and always held by a shared reference; a
/// namespace files it under its name once setNamespace has placed it there.
/// The variable knows its namespace by a plain pointer, which nothing clears
/// when the namespace goes. The type and the default value are stored as
/// given: nothing checks that they agree.
class KESTODM_API DmGlobalVariable : public DmNamedEntity, public DmInstanceCounter<DmGlobalVariable> {
    struct InternalConstructor {
        explicit InternalConstructor() = default;
    };

public:
    /// @name Construction
    /// @{
    /// A new variable named after `name` as `flags` resolve it, in no
    /// namespace, with neither type nor default value; null when the name is
    /// refused (empty, or without a legal form where one is asked for).
    static std::shared_ptr<DmGlobalVariable> createGlobalVariable(std::string const& name,
                                                                  DmNameResolveFlags flags);

    /// For createGlobalVariable only.
    DmGlobalVariable(InternalConstructor, std::string name);
    DmGlobalVariable(DmGlobalVariable const&) = delete;
    ~DmGlobalVariable() override;
    /// @}

    /// @name Identity
    /// @{
    /// The key of the variable among all variables of a library: its full name.
    std::string getMapEntryKey() const;
    /// Appends the scope name of the namespace, "::" and the name; no prefix
    /// in the global namespace or without a namespace.
    void resolveFullName(std::string& out) const override;
    /// @}

    /// @name Placement
    /// @{
    DmNamespace* getNamespace() noexcept { return m_namespace; }
    DmNamespace const* getNamespace() const noexcept { return m_namespace; }
    /// Moves the variable into `ns`, or out of its namespace for null (always
    /// kSuccess). Only kFailOnClash is allowed (kInvalidArgument otherwise).
    /// The variable leaves its old namespace first; when `ns` has a variable
    /// of that name already the result is kFailure, and the variable is then
    /// filed nowhere while getNamespace still gives the old namespace: the
    /// caller must place it again or treat it as lost.
    DmStatus setNamespace(DmNamespace* ns, DmNameResolutionType resolution);
    /// @}

    /// @name Type and value
    /// @{
    std::shared_ptr<DmBaseType const> const& getType() const noexcept { return m_type; }
    void setType(std::shared_ptr<DmBaseType const> type) { m_type = std::move(type); }
    std::shared_ptr<DmBaseValue const> const& getDefaultValue() const noexcept { return m_defaultValue; }
    void setDefaultValue(std::shared_ptr<DmBaseValue const> value) { m_defaultValue = std::move(value); }
    /// @}

private:
    /// The shared reference that owns this variable; null while none does.
    std::shared_ptr<DmGlobalVariable> self();

    DmNamespace* m_namespace = nullptr;
    std::shared_ptr<DmBaseType const> m_type;
    std::shared_ptr<DmBaseValue const> m_defaultValue;
};

} // namespace Kesto
