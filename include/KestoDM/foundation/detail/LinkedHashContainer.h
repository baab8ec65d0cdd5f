#pragma once

#include <boost/multi_index/hashed_index.hpp>
#include <boost/multi_index/sequenced_index.hpp>
#include <boost/multi_index_container.hpp>

#include <memory>

namespace Kesto {
namespace detail {

/// Index tags: the hashed index finds an element by its key, the sequenced
/// index keeps the order of insertion.
struct LinkedHashByKey {};
struct LinkedHashByOrder {};

/// The container behind LinkedHashMap and LinkedHashSet. `Allocator` may be an
/// allocator of any type; it is rebound to `Element`.
template <class Element, class KeyOf, class Hash, class Equal, class Allocator>
using LinkedHashContainer = boost::multi_index_container<
    Element,
    boost::multi_index::indexed_by<
        boost::multi_index::hashed_unique<boost::multi_index::tag<LinkedHashByKey>, KeyOf, Hash, Equal>,
        boost::multi_index::sequenced<boost::multi_index::tag<LinkedHashByOrder>>>,
    typename std::allocator_traits<Allocator>::template rebind_alloc<Element>>;

} // namespace detail
} // namespace Kesto
