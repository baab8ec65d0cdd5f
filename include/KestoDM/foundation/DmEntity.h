#pragma once

#include <KestoDM/foundation/DmInstanceCounter.h>
#include <KestoDM/platform/DmExport.h>

#include <atomic>
#include <memory>

namespace Kesto {

class DmMetadata;

/// Root of the data model. Every entity carries a shared metadata tree, a
/// completeness flag and a one-way const flag. Entities are made by the
/// factories of their concrete classes; this class is never built on its own.
class KESTODM_API DmEntity : public DmInstanceCounter<DmEntity> {
public:
    DmEntity& operator=(DmEntity const&) = delete;
    DmEntity& operator=(DmEntity&&) = delete;

    /// @name Queries
    /// @{
    /// The metadata tree; shared with copies of this entity. It is made at
    /// the first call (most entities of a graph never carry metadata), safely
    /// also on entities that several threads read.
    std::shared_ptr<DmMetadata> const& getMetadata() const {
        return m_metadataMade.load(std::memory_order_acquire) ? m_metadata : makeMetadata();
    }
    std::shared_ptr<DmMetadata>& getMetadata() {
        static_cast<DmEntity const&>(*this).getMetadata();
        return m_metadata;
    }
    /// Whether the metadata tree holds an item; asks without making the tree.
    bool hasMetadata() const;

    virtual bool isValid() const;
    virtual bool isComplete() const;
    bool isConst() const noexcept { return m_const; }
    /// @}

    /// @name Edits
    /// @{
    virtual void setCompleteness(bool complete);
    /// Marks the entity const for good: nothing clears the flag again.
    void makeConst() noexcept { m_const = true; }
    /// @}

protected:
    explicit DmEntity(bool complete);
    /// Shares the source's metadata; constness is never inherited.
    DmEntity(DmEntity const& other);
    /// Takes the source's metadata, leaving the source with none.
    DmEntity(DmEntity&& other) noexcept;
    virtual ~DmEntity();

private:
    std::shared_ptr<DmMetadata> const& makeMetadata() const;

    mutable std::shared_ptr<DmMetadata> m_metadata;
    mutable std::atomic<bool> m_metadataMade{false};
    bool m_complete;
    bool m_const = false;
};

} // namespace Kesto
