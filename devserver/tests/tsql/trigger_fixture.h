// A table with a trigger that keeps a journal of every row that is written.
#pragma once

#include "devserver/tests/tsql/test_database.h"

namespace devsql::test {

class Triggers : public TsqlTest {
  protected:
    Triggers() {
        client.Run(R"(
create table lot (id int primary key, name varchar(20), qty int not null default 0, note varchar(20) null)
create table journal (no int identity, event varchar(10), id int, was varchar(20), became varchar(20))
GO
create trigger lot_journal on lot after insert, update, delete as
set nocount on
insert journal (event, id, was, became)
select case when d.id is null then 'insert' when i.id is null then 'delete' else 'update' end,
    coalesce(i.id, d.id), d.name, i.name
from inserted i full join deleted d on d.id = i.id order by coalesce(i.id, d.id)
)");
    }
};

} // namespace devsql::test
