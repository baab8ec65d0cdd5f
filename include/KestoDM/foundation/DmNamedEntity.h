#pragma once

#include <KestoDM/foundation/DmEntity.h>
#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/foundation/DmNameResolution.h>
#include <KestoDM/platform/DmExport.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace Kesto {

/// An entity with a name and a process-wide RuntimeUID, through which a live
/// entity can be found again (findByRuntimeUID) without holding a reference.
class KESTODM_API DmNamedEntity : public DmEntity,
                                  public std::enable_shared_from_this<DmNamedEntity>,
                                  public DmInstanceCounter<DmNamedEntity> {
public:
    using RuntimeUID = std::uint64_t;

    /// The UID of no entity: marks empty table slots and moved-from entities.
    static constexpr RuntimeUID kInvalidRuntimeUID = 0xD8A8522ACA2B9437ull;

    class InstanceMap;
    class UpdateHelper;

    DmNamedEntity& operator=(DmNamedEntity const&) = delete;
    DmNamedEntity& operator=(DmNamedEntity&&) = delete;

    /// @name Queries
    /// @{
    RuntimeUID getRuntimeUID() const noexcept { return m_runtimeUID; }

    /// The live entity of that UID, or an empty pointer. Throws std::bad_weak_ptr
    /// when the entity is alive but not owned by a shared pointer (on the stack,
    /// still in construction, or dying on another thread).
    static std::shared_ptr<DmNamedEntity const> findByRuntimeUID(RuntimeUID uid);

    virtual std::string const& getName() const;
    /// Appends the full name to `out` without clearing it; scoped classes put
    /// their scope in front.
    virtual void resolveFullName(std::string& out) const;

    bool isValid() const override;
    bool isInUpdate() const noexcept { return m_inUpdate; }

    /// Equal names, byte for byte; class and scope play no part.
    bool operator==(DmNamedEntity const& other) const noexcept;
    bool operator!=(DmNamedEntity const& other) const noexcept { return !(*this == other); }
    /// @}

    /// @name Edits
    /// @{
    /// Renames the entity. A const entity keeps its name, and a name that
    /// resolveName refuses leaves the old one. The base class ignores `type`.
    virtual bool setName(std::string const& name, DmNameResolutionType type, DmNameResolveFlags flags);
    /// @}

protected:
    DmNamedEntity(std::string name, bool complete);
    /// A copy gets a new UID and shares the source's metadata.
    DmNamedEntity(DmNamedEntity const& other);
    /// A move takes over the source's UID; the source is left with the invalid UID.
    DmNamedEntity(DmNamedEntity&& other);
    ~DmNamedEntity() override;

    /// Turns a proposed name into the stored form; false (out untouched) when refused.
    static bool resolveName(std::string const& in, std::string& out, DmNameResolveFlags flags);
    /// What every factory of a named class does: a new `T` under the name as
    /// `flags` resolve it, or null when they refuse it. `T` is made from
    /// `tag`, the resolved name, then `args`, by make_shared, which connects
    /// the shared-from-this part through which entities hand themselves out.
    template <class T, class Tag, class... Args>
    static std::shared_ptr<T> makeNamed(std::string const& name, DmNameResolveFlags flags, Tag tag,
                                        Args&&... args) {
        std::string resolved;
        if (!resolveName(name, resolved, flags)) {
            return nullptr;
        }
        return std::make_shared<T>(tag, std::move(resolved), std::forward<Args>(args)...);
    }

    void setInUpdate(bool inUpdate) noexcept { m_inUpdate = inUpdate; }

private:
    RuntimeUID m_runtimeUID;
    std::string m_name;
    bool m_inUpdate = false;
};

/// Marks an entity as in update for the lifetime of the guard. Guards do not
/// nest: the first one to end clears the flag.
class KESTODM_API DmNamedEntity::UpdateHelper {
public:
    explicit UpdateHelper(DmNamedEntity& entity) noexcept;
    UpdateHelper(UpdateHelper const&) = delete;
    UpdateHelper& operator=(UpdateHelper const&) = delete;
    virtual ~UpdateHelper();

protected:
    DmNamedEntity* m_entity;
};

} // namespace Kesto
