/// \class quorix::RecordTable
/// A collection of shared records that finds them by their fields without a walk. It finds what a walk would
/// find, also after the application has changed a record or the collection.
#pragma once

#include <memory>

#include "quorix/base/Collection.h"
#include "quorix/im/WatchedRecord.h"

namespace quorix {

/// `Index` holds what is needed to find a record: Learn(sequence, record) and Forget(sequence, record), which
/// change nothing when memory runs out; a record that was not learnt may be forgotten. A null that the
/// application has added is never found. See RecordIndex.h for what it consists of.
template <class Record, class Index>
class RecordTable : public Collection<std::shared_ptr<Record>>, private RecordWatcher {
public:
    RecordTable();
    ~RecordTable() override;

protected:
    const Index& GetIndex() const { return *index_; }

private:
    void Entered(Sequence sequence, const std::shared_ptr<Record>& record) final;
    void Leaving(Sequence sequence, const std::shared_ptr<Record>& record) final;
    void Forget(Sequence sequence) final;
    void Learn(Sequence sequence) final;

    std::unique_ptr<Index> index_;
};

}  // namespace quorix
