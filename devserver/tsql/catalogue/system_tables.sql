-- The tables of the catalogue as SQL Server 2000 has them. They are found under any owner.
-- The form of these files is described in fragments.sql.

CREATE VIEW sysobjects (
    name sysname, id int, xtype char(2), uid smallint, info smallint, status int, base_schema_ver int,
    replinfo int, parent_obj int, crdate datetime, ftcatid smallint, schema_ver int, stats_schema_ver int,
    type char(2), userstat smallint, sysstat smallint, indexdel smallint, refdate datetime, version int,
    deltrig int, instrig int, updtrig int, seltrig int, category int, cache smallint
) AS
SELECT o.name, o.id, CASE WHEN length(o.type) = 1 THEN o.type || ' ' ELSE o.type END AS xtype, 1 AS uid,
    0 AS info, 0 AS status, 0 AS base_schema_ver, 0 AS replinfo, o.parent AS parent_obj, o.created AS crdate,
    0 AS ftcatid, 0 AS schema_ver, 0 AS stats_schema_ver,
    CASE WHEN o.type IN ('PK', 'UQ') THEN 'K ' WHEN length(o.type) = 1 THEN o.type || ' ' ELSE o.type END
        AS type,
    1 AS userstat,
    CASE o.type WHEN 'U' THEN 3 WHEN 'V' THEN 2 WHEN 'P' THEN 4 WHEN 'PK' THEN 9 WHEN 'UQ' THEN 9
        WHEN 'F' THEN 11 WHEN 'C' THEN 7 WHEN 'D' THEN 6 WHEN 'TR' THEN 8 ELSE 0 END AS sysstat,
    0 AS indexdel, o.created AS refdate, 0 AS version,
    {delete_trigger} AS deltrig, {insert_trigger} AS instrig, {update_trigger} AS updtrig, 0 AS seltrig,
    CASE WHEN o.shipped THEN 2 ELSE 0 END AS category, 0 AS cache
FROM {db}.devsql_objects o
GO

CREATE VIEW syscolumns (
    name sysname, id int, xtype tinyint, typestat tinyint, xusertype smallint, length smallint, xprec tinyint,
    xscale tinyint, colid smallint, xoffset smallint, bitpos tinyint, reserved tinyint, colstat smallint,
    cdefault int, domain int, number smallint, colorder smallint, autoval varbinary(255), offset smallint,
    status tinyint, type tinyint, usertype smallint, printfmt varchar(255), prec smallint, scale int,
    iscomputed int, isoutparam int, isnullable int, collation sysname
) AS
SELECT c.name, c.object AS id, t.xtype, 0 AS typestat, {user_type_id} AS xusertype, {column_bytes} AS length,
    c.precision AS xprec, c.scale AS xscale, c.id AS colid, 0 AS xoffset, 0 AS bitpos, 0 AS reserved,
    CASE WHEN c.identity THEN 1 ELSE 0 END AS colstat, coalesce(c.default_id, 0) AS cdefault, 0 AS domain,
    0 AS number, coalesce(c.position, 0) + 1 AS colorder, NULL AS autoval, 0 AS offset,
    (CASE WHEN c.nullable THEN 8 ELSE 0 END) + (CASE WHEN c.identity THEN 128 ELSE 0 END) + (CASE
        WHEN c.output THEN 64 ELSE 0 END) AS status,
    t.tds AS type, {usertype} AS usertype, NULL AS printfmt, {column_digits} AS prec, {column_scale} AS scale,
    CASE WHEN coalesce(c.computed, '') <> '' THEN 1 ELSE 0 END AS iscomputed,
    coalesce(c.output, 0) AS isoutparam, c.nullable AS isnullable,
    CASE WHEN t.type_name IN ('char', 'varchar', 'nchar', 'nvarchar', 'text',
        'ntext') THEN 'SQL_Latin1_General_CP1_CI_AS' END AS collation
FROM {db}.devsql_columns c
    CROSS JOIN {types} t ON t.type = c.type
GO

CREATE VIEW sysindexes (
    id int, status int, first binary(6), indid smallint, root binary(6), minlen smallint, keycnt smallint,
    groupid smallint, dpages int, reserved int, used int, rowcnt bigint, rowmodctr int, name sysname, rows int
) AS
SELECT i.object AS id,
    (CASE WHEN i.is_unique THEN 2 ELSE 0 END) + (CASE WHEN i.clustered THEN 16 ELSE 0 END) + (CASE
        WHEN i.primary_key THEN 2048 ELSE 0 END) + (CASE WHEN i.is_constraint AND NOT i.primary_key THEN 4096
        ELSE 0 END) AS status,
    NULL AS first, i.id AS indid, NULL AS root, 0 AS minlen,
    (SELECT count(*) FROM {db}.devsql_index_columns k WHERE k.object = i.object AND k.id = i.id) AS keycnt,
    1 AS groupid, 0 AS dpages, 0 AS reserved, 0 AS used, tsql_rows({name}, i.object) AS rowcnt, 0 AS rowmodctr,
    i.name, tsql_rows({name}, i.object) AS rows
FROM {db}.devsql_indexes i
UNION ALL
SELECT o.id, 0, NULL, 0, NULL, 0, 0, 1, 0, 0, 0, tsql_rows({name}, o.id), 0, o.name, tsql_rows({name}, o.id)
FROM {db}.devsql_objects o
WHERE o.type = 'U' AND NOT EXISTS (SELECT 1 FROM {db}.devsql_indexes i WHERE i.object = o.id AND i.clustered)
GO

CREATE VIEW sysindexkeys (
    id int, indid smallint, colid smallint, keyno smallint
) AS
SELECT object AS id, id AS indid, column_id AS colid, ordinal AS keyno
FROM {db}.devsql_index_columns
GO

CREATE VIEW sysforeignkeys (
    constid int, fkeyid int, rkeyid int, fkey smallint, rkey smallint, keyno smallint
) AS
SELECT k.id AS constid, k.object AS fkeyid, k.referenced AS rkeyid, c.column_id AS fkey,
    c.referenced_column AS rkey, c.ordinal AS keyno
FROM {db}.devsql_foreign_keys k
    JOIN {db}.devsql_foreign_key_columns c ON c.id = k.id
GO

CREATE VIEW sysreferences (
    constid int, fkeyid int, rkeyid int, rkeyindid smallint, keycnt smallint
) AS
SELECT k.id AS constid, k.object AS fkeyid, k.referenced AS rkeyid, 1 AS rkeyindid,
    (SELECT count(*) FROM {db}.devsql_foreign_key_columns c WHERE c.id = k.id) AS keycnt
FROM {db}.devsql_foreign_keys k
GO

CREATE VIEW sysconstraints (
    constid int, id int, colid smallint, status int
) AS
SELECT o.id AS constid, o.parent AS id, {constraint_column} AS colid,
    CASE o.type WHEN 'PK' THEN 1 WHEN 'UQ' THEN 2 WHEN 'F' THEN 3 WHEN 'C' THEN 4 ELSE 5 END AS status
FROM {db}.devsql_objects o
WHERE o.type IN ('PK', 'UQ', 'F', 'C', 'D')
GO

CREATE VIEW syscomments (
    id int, number smallint, colid smallint, status smallint, ctext varbinary(8000), texttype smallint,
    language smallint, encrypted bit, compressed bit, text nvarchar(4000)
) AS
WITH RECURSIVE piece(id, number, part, encrypted) AS (SELECT id, 1, text, encrypted FROM {db}.devsql_objects
    WHERE text <> '' UNION ALL SELECT id, number + 1, substr(part, 4001), encrypted FROM piece
    WHERE length(part) > 4000)
SELECT id, 1 AS number, number AS colid, 2 AS status, NULL AS ctext, 2 AS texttype, 0 AS language, encrypted,
    0 AS compressed, CASE WHEN encrypted THEN NULL ELSE substr(part, 1, 4000) END AS text
FROM piece
GO

CREATE VIEW systypes (
    name sysname, xtype tinyint, status tinyint, xusertype smallint, length smallint, xprec tinyint,
    xscale tinyint, tdefault int, domain int, uid smallint, reserved smallint, collationid int,
    usertype smallint, variable bit, allownulls bit, type tinyint, prec smallint, scale tinyint,
    collation sysname
) AS
SELECT t.type_name AS name, t.xtype, 0 AS status, t.xtype AS xusertype, t.bytes AS length, t.digits AS xprec,
    0 AS xscale, 0 AS tdefault, 0 AS domain, 4 AS uid, 0 AS reserved, NULL AS collationid, t.usertype,
    t.type_name IN ('varchar', 'nvarchar', 'varbinary') AS variable, 1 AS allownulls, t.tds AS type,
    t.digits AS prec, 0 AS scale, NULL AS collation
FROM {types} t
UNION ALL
SELECT 'sysname', 231, 0, 256, 256, 0, 0, 0, 0, 4, 0, NULL, 18, 1, 0, 39, 128, 0, NULL
UNION ALL
SELECT c.name, t.xtype, 0, 256 + c.rowid, {column_bytes}, c.precision, c.scale, 0, 0, 1, 0, NULL, 256 + c.rowid,
    0, c.nullable, t.tds, {column_digits}, {column_scale}, NULL
FROM {db}.devsql_types c
    JOIN {types} t ON t.type = c.type
GO

CREATE VIEW sysusers (
    uid smallint, status smallint, name sysname, sid varbinary(85), createdate datetime, updatedate datetime,
    altuid smallint, gid smallint, hasdbaccess int, islogin int, isntname int, isntgroup int, isntuser int,
    issqluser int, isaliased int, issqlrole int, isapprole int
) AS
SELECT u.id AS uid, 0 AS status, u.name,
    CASE WHEN u.id = 1 THEN coalesce((SELECT l.sid FROM main.devsql_databases d
        JOIN main.devsql_logins l ON l.name = d.owner WHERE d.name = {name}), x'01') ELSE (SELECT l.sid
        FROM main.devsql_logins l WHERE l.name = u.login) END AS sid,
    u.created AS createdate, u.created AS updatedate, NULL AS altuid,
    CASE WHEN u.role THEN u.id ELSE 0 END AS gid, CASE WHEN u.role THEN 0 ELSE 1 END AS hasdbaccess,
    CASE WHEN u.role THEN 0 ELSE 1 END AS islogin, 0 AS isntname, 0 AS isntgroup, 0 AS isntuser,
    CASE WHEN u.role THEN 0 ELSE 1 END AS issqluser, 0 AS isaliased, u.role AS issqlrole, 0 AS isapprole
FROM {db}.devsql_users u
GO

CREATE VIEW sysmembers (
    memberuid smallint, groupuid smallint
) AS
SELECT member AS memberuid, role AS groupuid
FROM {db}.devsql_members
GO

CREATE VIEW sysprotects (
    id int, uid smallint, action tinyint, protecttype tinyint, columns varbinary(4000), grantor smallint
) AS
SELECT p.object AS id, p.grantee AS uid,
    CASE p.permission WHEN 'SELECT' THEN 193 WHEN 'INSERT' THEN 195 WHEN 'DELETE' THEN 196
        WHEN 'UPDATE' THEN 197 WHEN 'EXECUTE' THEN 224 WHEN 'REFERENCES' THEN 26 ELSE 0 END AS action,
    CASE p.state WHEN 'DENY' THEN 206 ELSE 205 END AS protecttype, NULL AS columns, 1 AS grantor
FROM {db}.devsql_permissions p
GO

CREATE VIEW sysfilegroups (
    groupid smallint, allocpolicy smallint, status int, groupname sysname
) AS
SELECT 1 AS groupid, 0 AS allocpolicy, 16 AS status, 'PRIMARY' AS groupname
GO

CREATE VIEW sysfiles (
    fileid smallint, groupid smallint, size int, maxsize int, growth int, status int, perf int, name nchar(128),
    filename nchar(260)
) AS
SELECT f.id AS fileid, CASE WHEN f.log THEN 0 ELSE 1 END AS groupid, CAST(f.size AS INTEGER) / 8 AS size,
    -1 AS maxsize, 10 AS growth, CASE WHEN f.log THEN 66 ELSE 2 END AS status, 0 AS perf, f.name,
    f.client_path AS filename
FROM main.devsql_files f
    JOIN main.devsql_databases d ON d.id = f.database
WHERE d.name = {name}
GO

CREATE VIEW sysaltfiles (
    fileid smallint, groupid smallint, size int, maxsize int, growth int, status int, perf int, dbid smallint,
    name nchar(128), filename nchar(260)
) AS
SELECT f.id AS fileid, CASE WHEN f.log THEN 0 ELSE 1 END AS groupid, CAST(f.size AS INTEGER) / 8 AS size,
    -1 AS maxsize, 10 AS growth, CASE WHEN f.log THEN 66 ELSE 2 END AS status, 0 AS perf, f.database AS dbid,
    f.name, f.client_path AS filename
FROM main.devsql_files f
GO

CREATE VIEW sysdatabases (
    name sysname, dbid smallint, sid varbinary(85), mode smallint, status int, status2 int, crdate datetime,
    reserved datetime, category int, cmptlevel tinyint, filename nvarchar(260), version smallint
) AS
SELECT d.name, d.id AS dbid, (SELECT l.sid FROM main.devsql_logins l WHERE l.name = d.owner) AS sid, 0 AS mode,
    CASE WHEN EXISTS (SELECT 1 FROM main.devsql_options p WHERE p.database = d.id AND p.name = 'SINGLE_USER'
        AND p.value = 'ON') THEN 4096 ELSE 0 END + 24 AS status,
    0 AS status2, d.created AS crdate, 0 AS reserved,
    CASE WHEN EXISTS (SELECT 1 FROM main.devsql_options p WHERE p.database = d.id AND p.name = 'PUBLISHED'
        AND p.value = 'ON') THEN 1 ELSE 0 END + CASE WHEN EXISTS (SELECT 1 FROM main.devsql_options p
        WHERE p.database = d.id AND p.name = 'DISTRIBUTOR' AND p.value = 'ON') THEN 16 ELSE 0 END AS category,
    80 AS cmptlevel,
    (SELECT f.client_path FROM main.devsql_files f WHERE f.database = d.id AND f.id = 1) AS filename,
    539 AS version
FROM main.devsql_databases d
GO

CREATE VIEW syslogins (
    sid varbinary(85), status smallint, createdate datetime, updatedate datetime, name sysname, dbname sysname,
    language sysname, denylogin int, hasaccess int, isntname int, isntgroup int, isntuser int, sysadmin int,
    securityadmin int, serveradmin int, setupadmin int, processadmin int, diskadmin int, dbcreator int,
    bulkadmin int, loginname sysname
) AS
SELECT sid, 9 AS status, created AS createdate, created AS updatedate, name,
    coalesce(database, 'master') AS dbname, 'us_english' AS language, 0 AS denylogin, 1 AS hasaccess,
    0 AS isntname, 0 AS isntgroup, 0 AS isntuser, administrator AS sysadmin, 0 AS securityadmin,
    0 AS serveradmin, 0 AS setupadmin, 0 AS processadmin, 0 AS diskadmin, 0 AS dbcreator, 0 AS bulkadmin,
    name AS loginname
FROM main.devsql_logins
GO

CREATE VIEW sysxlogins (
    name sysname, sid varbinary(85)
) AS
SELECT name, sid
FROM main.devsql_logins
GO

CREATE VIEW sysmessages (
    error int, severity smallint, dlevel smallint, description nvarchar(255), msglangid smallint
) AS
SELECT error, severity, 0 AS dlevel, description, 1033 AS msglangid
FROM {messages}
UNION ALL
SELECT error, severity, dlevel, description, msglangid
FROM main.sysusermessages
GO

CREATE VIEW sysprocesses (
    spid smallint, kpid smallint, blocked smallint, waittype binary(2), waittime bigint, lastwaittype nchar(32),
    waitresource nchar(256), dbid smallint, uid smallint, cpu int, physical_io bigint, memusage int,
    open_tran smallint, status nchar(30), sid binary(86), hostname nchar(128), program_name nchar(128),
    hostprocess nchar(10), cmd nchar(16), nt_domain nchar(128), nt_username nchar(128), net_address nchar(12),
    net_library nchar(12), loginame nchar(128)
) AS
SELECT s.id AS spid, 0 AS kpid, 0 AS blocked, x'0000' AS waittype, 0 AS waittime,
    'MISCELLANEOUS' AS lastwaittype, '' AS waitresource,
    coalesce((SELECT d.id FROM main.devsql_databases d WHERE d.name = s.database), 1) AS dbid, 1 AS uid,
    0 AS cpu, 0 AS physical_io, 0 AS memusage, 0 AS open_tran,
    CASE WHEN s.own THEN 'runnable' ELSE 'sleeping' END AS status, NULL AS sid, s.host AS hostname,
    s.program AS program_name, '' AS hostprocess,
    CASE WHEN s.own THEN 'SELECT' ELSE 'AWAITING COMMAND' END AS cmd, '' AS nt_domain, '' AS nt_username,
    '' AS net_address, 'TCP/IP' AS net_library, s.login AS loginame
FROM {sessions} s
GO
