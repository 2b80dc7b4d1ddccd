#pragma once

#include <memory>
#include <vector>

#include "platform/db/transactions.h"

namespace sg::model {

class DatabaseState;

class Transaction final : public AcTransaction {
  public:
    Acad::ErrorStatus getObject(AcDbObject*& object, AcDbObjectId id, AcDb::OpenMode mode,
                                bool openErased) override;
    Acad::ErrorStatus addNewlyCreatedDBRObject(AcDbObject* object, bool add) override;

    // Ends the opens of the objects that it holds.
    void release();

  private:
    Acad::ErrorStatus openAgain(AcDbObject& object, AcDb::OpenMode mode, bool openErased);

    std::vector<AcDbObjectId> held_;
};

class TransactionManager final : public AcDbTransactionManager {
  public:
    explicit TransactionManager(DatabaseState& state);
    ~TransactionManager() override;

    AcTransaction* startTransaction() override;
    Acad::ErrorStatus endTransaction() override;
    Acad::ErrorStatus abortTransaction() override;
    int numActiveTransactions() const override { return static_cast<int>(active_.size()); }
    AcTransaction* topTransaction() const override;
    Acad::ErrorStatus getObject(AcDbObject*& object, AcDbObjectId id, AcDb::OpenMode mode,
                                bool openErased) override;
    Acad::ErrorStatus addNewlyCreatedDBRObject(AcDbObject* object, bool add) override;

  private:
    DatabaseState& state_;
    std::vector<std::unique_ptr<Transaction>> active_;  // innermost last
};

}  // namespace sg::model
