#include <KestoDM/assets/DmURI.h>

#include <deque>
#include <unordered_set>
#include <utility>

namespace Kesto {

DmURI::DmURI(std::string name)
    : DmEntity(true), m_name(std::move(name)), m_dependencies(std::make_shared<URIMap>()) {}

DmURI::DmURI(DmURI const& other)
    : DmEntity(other), DmInstanceCounter<DmURI>(other), m_name(other.m_name),
      m_dependencies(std::make_shared<URIMap>(*other.m_dependencies)) {}

DmURI::~DmURI() = default;

void DmURI::setName(std::string name) {
    m_name = std::move(name);
}

bool DmURI::addDependency(std::shared_ptr<DmURI> const& uri) {
    if (!uri || uri.get() == this)
        return false;
    return m_dependencies->insert(uri->getName(), uri).second;
}

bool DmURI::removeDependency(std::shared_ptr<DmURI> const& uri) {
    if (!uri)
        return false;
    return m_dependencies->erase(uri->getName()) != 0;
}

bool DmURI::hasDependency(std::shared_ptr<DmURI> const& uri) const {
    if (!uri)
        return false;
    std::string const& name = uri->getName();
    if (m_dependencies->contains(name))
        return true;

    // Breadth first over the dependencies of dependencies. Every URI enters the
    // work list once, so a cycle among URIs (a file that, through others,
    // needs itself) ends the walk instead of looping.
    std::unordered_set<DmURI const*> seen{this};
    std::deque<DmURI const*> work;
    auto const enqueueDependenciesOf = [&seen, &work](DmURI const& from) {
        for (auto const& entry : *from.m_dependencies) {
            DmURI const* const dependency = entry.second.get();
            if (dependency && seen.insert(dependency).second)
                work.push_back(dependency);
        }
    };
    enqueueDependenciesOf(*this);
    while (!work.empty()) {
        DmURI const* const next = work.front();
        work.pop_front();
        if (next->m_dependencies->contains(name))
            return true;
        enqueueDependenciesOf(*next);
    }
    return false;
}

} // namespace Kesto
