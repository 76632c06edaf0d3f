-- sp_helpserver: @p1 is the server's name, empty for all servers.
SELECT srvname AS name, srvnetname AS network_name,
    CONVERT(varchar(100),
        CASE rpc WHEN 1 THEN 'rpc,' ELSE '' END +
        CASE rpcout WHEN 1 THEN 'rpc out,' ELSE '' END +
        CASE pub WHEN 1 THEN 'pub,' ELSE '' END +
        CASE sub WHEN 1 THEN 'sub,' ELSE '' END +
        CASE dist WHEN 1 THEN 'dist,' ELSE '' END +
        CASE dataaccess WHEN 1 THEN 'data access,' ELSE '' END) AS status,
    CONVERT(char(4), srvid) AS id, CONVERT(sysname, NULL) AS collation_name, connecttimeout AS connect_timeout,
    querytimeout AS query_timeout
FROM master.dbo.sysservers
WHERE @p1 = N'' OR srvname = @p1
ORDER BY srvname
