-- The views of linked servers and of replication. They read master's file from every database.
-- The form of these files is described in fragments.sql.

CREATE VIEW sysservers (
    srvid smallint, srvstatus smallint, srvname sysname, srvproduct nvarchar(128), providername nvarchar(128),
    datasource nvarchar(4000), location nvarchar(4000), providerstring nvarchar(4000), schemadate datetime,
    topologyx int, topologyy int, catalog sysname, srvcollation sysname, connecttimeout int, querytimeout int,
    srvnetname char(30), isremote bit, rpc bit, pub bit, sub bit, dist bit, dpub bit, rpcout bit,
    dataaccess bit, collationcompatible bit, system bit, useremotecollation bit, lazyschemavalidation bit,
    collation sysname
) AS
SELECT s.id AS srvid, 0 AS srvstatus, s.name AS srvname, s.product AS srvproduct, s.provider AS providername,
    s.source AS datasource,
    (SELECT o.value FROM main.devsql_server_options o WHERE o.server = s.id AND o.name = 'location')
        AS location,
    (SELECT o.value FROM main.devsql_server_options o WHERE o.server = s.id AND o.name = 'provider string')
        AS providerstring,
    NULL AS schemadate, 0 AS topologyx, 0 AS topologyy,
    (SELECT o.value FROM main.devsql_server_options o WHERE o.server = s.id AND o.name = 'catalog') AS catalog,
    NULL AS srvcollation,
    coalesce(CAST((SELECT o.value FROM main.devsql_server_options o WHERE o.server = s.id
        AND o.name = 'connect timeout') AS INTEGER), 0) AS connecttimeout,
    coalesce(CAST((SELECT o.value FROM main.devsql_server_options o WHERE o.server = s.id
        AND o.name = 'query timeout') AS INTEGER), 0) AS querytimeout,
    substr(s.name || '                              ', 1, 30) AS srvnetname, 0 AS isremote,
    coalesce((SELECT o.value = 'true' FROM main.devsql_server_options o WHERE o.server = s.id
        AND o.name = 'rpc'), s.id = 0) AS rpc,
    coalesce(s.publisher, 0) AS pub, coalesce(s.subscriber, 0) AS sub, coalesce(s.distributor, 0) AS dist,
    coalesce((SELECT o.value = 'true' FROM main.devsql_server_options o WHERE o.server = s.id
        AND o.name = 'dpub'), 0) AS dpub,
    coalesce((SELECT o.value = 'true' FROM main.devsql_server_options o WHERE o.server = s.id
        AND o.name = 'rpc out'), s.id = 0) AS rpcout,
    coalesce((SELECT o.value = 'true' FROM main.devsql_server_options o WHERE o.server = s.id
        AND o.name = 'data access'), 0) AS dataaccess,
    coalesce((SELECT o.value = 'true' FROM main.devsql_server_options o WHERE o.server = s.id
        AND o.name = 'collation compatible'), 0) AS collationcompatible,
    0 AS system,
    coalesce((SELECT o.value = 'true' FROM main.devsql_server_options o WHERE o.server = s.id
        AND o.name = 'use remote collation'), 1) AS useremotecollation,
    0 AS lazyschemavalidation, NULL AS collation
FROM main.devsql_servers s
GO

CREATE VIEW sys.servers (
    server_id int, name sysname, product sysname, provider sysname, data_source nvarchar(4000),
    location nvarchar(4000), provider_string nvarchar(4000), catalog sysname, connect_timeout int,
    query_timeout int, is_linked bit, is_remote_login_enabled bit, is_rpc_out_enabled bit,
    is_data_access_enabled bit, is_collation_compatible bit, is_publisher bit, is_subscriber bit,
    is_distributor bit
) AS
SELECT s.id AS server_id, s.name, s.product, s.provider, s.source AS data_source,
    (SELECT o.value FROM main.devsql_server_options o WHERE o.server = s.id AND o.name = 'location')
        AS location,
    (SELECT o.value FROM main.devsql_server_options o WHERE o.server = s.id AND o.name = 'provider string')
        AS provider_string,
    (SELECT o.value FROM main.devsql_server_options o WHERE o.server = s.id AND o.name = 'catalog') AS catalog,
    coalesce(CAST((SELECT o.value FROM main.devsql_server_options o WHERE o.server = s.id
        AND o.name = 'connect timeout') AS INTEGER), 0) AS connect_timeout,
    coalesce(CAST((SELECT o.value FROM main.devsql_server_options o WHERE o.server = s.id
        AND o.name = 'query timeout') AS INTEGER), 0) AS query_timeout,
    s.id > 0 AS is_linked,
    coalesce((SELECT o.value = 'true' FROM main.devsql_server_options o WHERE o.server = s.id
        AND o.name = 'rpc'), s.id = 0) AS is_remote_login_enabled,
    coalesce((SELECT o.value = 'true' FROM main.devsql_server_options o WHERE o.server = s.id
        AND o.name = 'rpc out'), s.id = 0) AS is_rpc_out_enabled,
    coalesce((SELECT o.value = 'true' FROM main.devsql_server_options o WHERE o.server = s.id
        AND o.name = 'data access'), 0) AS is_data_access_enabled,
    coalesce((SELECT o.value = 'true' FROM main.devsql_server_options o WHERE o.server = s.id
        AND o.name = 'collation compatible'), 0) AS is_collation_compatible,
    coalesce(s.publisher, 0) AS is_publisher, coalesce(s.subscriber, 0) AS is_subscriber,
    coalesce(s.distributor, 0) AS is_distributor
FROM main.devsql_servers s
GO

CREATE VIEW syspublications (
    description nvarchar(255), name sysname, pubid int, repl_freq tinyint, status tinyint, sync_method tinyint,
    snapshot_jobid binary(16), independent_agent bit, immediate_sync bit, enabled_for_internet bit,
    allow_push bit, allow_pull bit, allow_anonymous bit, immediate_sync_ready bit, allow_sync_tran bit,
    autogen_sync_procs bit, retention int, allow_queued_tran bit
) AS
SELECT p.description, p.name, p.id AS pubid, p.snapshot AS repl_freq, p.active AS status, 0 AS sync_method,
    NULL AS snapshot_jobid, 0 AS independent_agent, 0 AS immediate_sync, 0 AS enabled_for_internet,
    1 AS allow_push, 0 AS allow_pull, 0 AS allow_anonymous, 0 AS immediate_sync_ready, 0 AS allow_sync_tran,
    1 AS autogen_sync_procs, 336 AS retention, 0 AS allow_queued_tran
FROM main.devsql_publications p
WHERE p.database = (SELECT d.id FROM main.devsql_databases d WHERE d.name = {name})
GO

CREATE VIEW sysarticles (
    artid int, columns varbinary(32), creation_script nvarchar(255), del_cmd nvarchar(255),
    description nvarchar(255), dest_table sysname, filter int, filter_clause ntext, ins_cmd nvarchar(255),
    name sysname, objid int, pubid int, pre_creation_cmd tinyint, status tinyint, sync_objid int, type tinyint,
    upd_cmd nvarchar(255), schema_option binary(8), dest_owner sysname
) AS
SELECT a.id AS artid, NULL AS columns, NULL AS creation_script, NULL AS del_cmd, NULL AS description,
    a.destination AS dest_table, 0 AS filter, NULL AS filter_clause, NULL AS ins_cmd, a.name, a.object AS objid,
    a.publication AS pubid, 1 AS pre_creation_cmd, 17 AS status, a.object AS sync_objid, 1 AS type,
    NULL AS upd_cmd, NULL AS schema_option, NULL AS dest_owner
FROM main.devsql_articles a
    JOIN main.devsql_publications p ON p.id = a.publication
WHERE p.database = (SELECT d.id FROM main.devsql_databases d WHERE d.name = {name})
GO

CREATE VIEW syssubscriptions (
    artid int, srvid smallint, dest_db sysname, status tinyint, sync_type tinyint, login_name sysname,
    subscription_type int, distribution_jobid binary(16), timestamp binary(8), update_mode tinyint,
    loopback_detection bit, queued_reinit bit
) AS
SELECT s.article AS artid, v.id AS srvid, s.database AS dest_db, 2 AS status, 1 AS sync_type,
    'sa' AS login_name, CASE WHEN s.push THEN 0 ELSE 1 END AS subscription_type, NULL AS distribution_jobid,
    NULL AS timestamp, 0 AS update_mode, 0 AS loopback_detection, 0 AS queued_reinit
FROM main.devsql_subscriptions s
    JOIN main.devsql_servers v ON v.name = s.server
    JOIN main.devsql_articles a ON a.id = s.article
    JOIN main.devsql_publications p ON p.id = a.publication
WHERE p.database = (SELECT d.id FROM main.devsql_databases d WHERE d.name = {name})
GO
