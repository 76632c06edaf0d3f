-- Removes the job of a replication agent if it is there: @p1 is its name.
IF EXISTS (SELECT * FROM msdb.dbo.sysjobs WHERE name = @p1)
    EXEC msdb.dbo.sp_delete_job @job_name = @p1
