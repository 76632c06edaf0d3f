-- sp_linkedservers
SELECT srvname AS SRV_NAME, providername AS SRV_PROVIDERNAME, srvproduct AS SRV_PRODUCT, datasource AS SRV_DATASOURCE,
    providerstring AS SRV_PROVIDERSTRING, location AS SRV_LOCATION, catalog AS SRV_CAT
FROM master.dbo.sysservers
ORDER BY srvname
