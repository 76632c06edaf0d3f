// Install scripts of the kind that is written for SQL Server 2000 to 2017 run to their end. They create what
// they should, and only those statements fail that are meant to or that the dialect refuses.
#include <fstream>
#include <sstream>

#include "devserver/tests/tsql/test_database.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql::test {
namespace {

class Scripts : public TsqlTest {
  protected:
    /// The numbers of the errors that the script causes, in their order.
    std::string Errors(const std::string& file) {
        std::filesystem::create_directories(server.folder.path() / "drive" / "Data");
        std::ifstream in(std::filesystem::path(KV_SCRIPTS_FOLDER) / file);
        std::string sql;
        for (std::string line; std::getline(in, line);) {
            const std::string word = AsciiUpper(line);
            sql += (word == "GO" ? word : line) + "\n"; // "go" as well divides batches.
        }
        EXPECT_FALSE(sql.empty()) << file;
        client = server.Login("master");
        client.Run(sql);
        std::string numbers;
        for (const Message& message : client.messages) {
            if (message.severity > 10) {
                numbers += (numbers.empty() ? "" : " ") + std::to_string(message.number);
            }
        }
        last_text = client.messages.empty() ? "" : client.messages.back().text;
        return numbers;
    }

    std::string last_text;
};

TEST_F(Scripts, OfAnOrderEntryDatabaseRunToTheirEndTwice) {
    EXPECT_EQ(Errors("order_entry.sql"), "");
    EXPECT_EQ(Errors("order_entry.sql"), "");
    EXPECT_EQ(last_text, "Gardenware is ready");
    EXPECT_EQ(Run(R"(
use Gardenware
set nocount off
GO
select xtype, count(*) from sysobjects where category = 0 group by xtype order by xtype
select (select count(*) from Staff), (select count(*) from Goods), (select count(*) from Orders), (select count(*) from "Order Lines")
select KindName, datalength(Picture) from Kinds
select Surname, BirthDate, HireDate from Staff
select * from "Order Subtotals"
select * from "Kinds by Revenue"
select * from Dearest
select City from "Customers and Staff by City" where Relationship = 'Staff' order by 1
GO
exec "Three Dearest Goods"
exec "Sales by Year" '1/1/1997', '12/31/1997'
declare @total money
exec SalesOfKind 'tools', '1997', @total output
select @total
select name from sysobjects where id = object_id('dbo.Order Lines') and sysstat & 0xf = 3)"),
              R"(
xtype|
C |5
D |7
F |7
P |3
PK|8
TR|1
U |8
V |7
(8)
|||
3|5|4|6
(1)
KindName|
Seeds|10740
Tools|2400
Pots|NULL
(3)
Surname|BirthDate|HireDate
Ash|1948-12-08 00:00:00.000|1992-05-01 00:00:00.000
Birch|1952-02-19 00:00:00.000|1992-08-14 00:00:00.000
Cole|1963-08-30 00:00:00.000|1992-04-01 00:00:00.000
(3)
OrderID|Subtotal
10248|251.3000
10249|167.4000
10250|1611.2000
10251|1.0000
(4)
KindID|KindName|Revenue
2|Tools|1778.6000
(1)
GoodsName|Price
Rake|263.5000
Fork|123.7900
Carrot, early|19.0000
(3)
City
98033
98122
98401
(3)
DearestGoods|Price
Rake|263.5000
Fork|123.7900
Carrot, early|19.0000
(3)
ShippedDate|OrderID|Subtotal|Year
1997-01-10 00:00:00.000|10249|167.4000|1997
1997-07-12 00:00:00.000|10250|1611.2000|1997
(2)
GoodsName|TotalPurchase
Fork|1611.00
Rake|167.00
(2)

1778.6000
(1)
name
Order Lines
(1)
)");
}

TEST_F(Scripts, OfAPublishersDatabaseRunToTheirEnd) {
    // The dialect refuses a default and a rule. The script itself means three checks, a foreign key and a
    // duplicate index to fail.
    EXPECT_EQ(Errors("publishing.sql"), "40510 40510 547 547 547 547 1913");
    EXPECT_EQ(last_text.substr(0, 10), "Ending at ");
    EXPECT_EQ(Run(R"(
use inkwell
set nocount off
GO
select name, length, allownulls from systypes where xusertype > 256 order by name
select (select count(*) from writers), (select count(*) from titles), (select count(*) from employee), (select count(*) from jobs)
select w_lname, phone from writers where phone not like '[0-9]%' order by w_lname
select title_id, gross, pubdate from titles order by title_id
select h_id, datalength(logo), datalength(pr_info) from house_info
select title, w_lname from titleview order by w_lname
exec byroyalty 40
exec reptq
exec reptotal
declare @found int, @status int
exec @status = findtitle 10, 30, 'b%', @found output
select @found, @status
exec @status = findtitle 10, 11
select @status
select recovery_model_desc from sys.databases where name = 'inkwell')"),
              R"(
name|length|allownulls
empid|9|0
id|11|0
remark|80|1
tid|6|0
(4)
|||
3|3|2|2
(1)
w_lname|phone
Car|UNKNOWN     
Greene|UNKNOWN     
(2)
title_id|gross|pubdate
BU1032|81859.0500|1991-06-12 00:00:00.000
MC3026|NULL|1991-06-30 00:00:00.000
PC8888|81900.0000|1994-06-12 00:00:00.000
(3)
h_id||
0736|643|126
(1)
title|w_lname
The Busy Executive's Ledger|Bend
Secrets of the "Valley"|Car
The Busy Executive's Ledger|Greene
(3)
w_id
213-46-8915
(1)
h_id|avg_price
0736|20.0000
0877|19.9900
ALL|19.9950
(3)
h_id|type|copies
0736|computing   |4095
0877|business    |4095
0736|NULL|4095
0877|NULL|4095
NULL|NULL|8190
(5)
h_id|title_id|price
0877|BU1032|19.9900
(1)
|
1|0
(1)
h_id|title_id|price
(0)
return 1

1
(1)
recovery_model_desc
SIMPLE
(1)
)");
}

TEST_F(Scripts, ThatToolsOfLaterYearsGenerateRunToTheirEnd) {
    // The dialect refuses rights on a schema, ALTER SCHEMA and FOR XML. The script itself means a check and a
    // RAISERROR to fail.
    EXPECT_EQ(Errors("workshop.sql"), "547 50000 40517 40510 40517");
    EXPECT_EQ(last_text, "Workshop is ready");
    EXPECT_TRUE(std::filesystem::exists(server.folder.path() / "drive" / "Data" / "Workshop_history.ndf"));
    EXPECT_EQ(Run(R"(
use Workshop
set nocount off
GO
select PartID, Number, Label, OnSale, Drawing, ModifiedDate from stock.Part where PartID in (1, 7)
select * from stock.Movement
select MovementID, Quantity, Reason from history.Movement
select PartID, OnHand, [Rows] from stock.vOnHand order by PartID
select objname = o.name, p.minor_id, p.name, p.value from sys.extended_properties p join sys.objects o on o.object_id = p.major_id order by p.minor_id
select name, is_primary_key from sys.indexes where object_id = object_id('stock.Movement') order by name
select s.name, t.name from sys.tables t join sys.schemas s on s.schema_id = t.schema_id order by 1, 2
select name, fileid, filename from sysfiles order by fileid)"),
              R"(
PartID|Number|Label|OnSale|Drawing|ModifiedDate
1|AB-100|AB-100 Bolt|1|0x0123456789ABCDEF|2008-03-11 10:01:36.827
7|AB-200|AB-200 Nut|0|NULL|2008-03-11 10:01:36.827
(2)
MovementID|PartID|Day|Quantity|Remark
1000|1|2016-03-01|12|NULL
1020|9|2016-03-02|5|NULL
(2)
MovementID|Quantity|Reason
1010|-2|moved
(1)
PartID|OnHand|Rows
1|12|1
7|0|1
8|0|1
9|5|1
(4)
objname|minor_id|name|value
Part|0|MS_Description|What lies on the shelves.
Part|4|MS_Description|Net weight in kilograms.
(2)
name|is_primary_key
IX_Movement_Part|0
PK_Movement|1
(2)
name|name
history|Movement
stock|Movement
stock|Part
(3)
name|fileid|filename
Workshop|1|D:\Data\Workshop.mdf
Workshop_log|2|D:\Data\Workshop_log.ldf
Workshop_history|3|D:\Data\Workshop_history.ndf
(3)
)");
}

} // namespace
} // namespace devsql::test
